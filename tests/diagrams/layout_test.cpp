#include "diagrams/layout.h"

#include <gtest/gtest.h>

TEST(DiagramsLayout, PartsFollowTheMainWindowAndForm1)
{
    EXPECT_EQ(form1Size({12000, 8400}), (TwipsSize{11940, 7340}));
    EXPECT_EQ(form1Size({30, 900}), (TwipsSize{0, 0})) << "smaller than the margins";

    // A window whose frame takes 120 twips of the width, and titles of different lengths.
    const DiagramsLayout layout = diagramsLayout(
        {12000, 8400}, {{11940, 7350}, {11820, 6900}, {2000, 300}, {1820, 240}, {1500, 375}});
    EXPECT_EQ(layout.chart1, (TwipsRect{0, 450, 11820, 2450}));
    EXPECT_EQ(layout.label1, (TwipsRect{4910, 150, 2000, 300}));
    EXPECT_EQ(layout.chart2, (TwipsRect{0, 4200, 11820, 2450}));
    EXPECT_EQ(layout.label2, (TwipsRect{5000, 3960, 1820, 240}));
    EXPECT_EQ(layout.button, (TwipsRect{5160, 3050, 1500, 375}));
    EXPECT_EQ(layout.dateLabel1Top, 2910);
    EXPECT_EQ(layout.dateLabel2Top, 6650);

    // Letters and a title bar of a small window that are too large for it.
    const DiagramsLayout small = diagramsLayout(
        {12000, 7000},
        {{11940, 5940}, {11000, 5300}, {2000, 500}, {2000, 500}, {2000, 900}, 600, 600});
    EXPECT_EQ(small.label1.top, 0);
    EXPECT_EQ(small.chart1.top, 500);
    EXPECT_EQ(small.chart1.width, 11000);
    EXPECT_LE(small.chart1.top + small.chart1.height, small.button.top);
    EXPECT_LE(small.button.top + small.button.height, small.label2.top);
    EXPECT_EQ(small.dateLabel2Top, 4700);
    EXPECT_LT(small.chart2.top + small.chart2.height, 4700) << "above the picked point";
}
