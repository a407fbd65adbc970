#include "diagrams/layout.h"

#include <gtest/gtest.h>

TEST(DiagramsLayout, PartsFollowTheMainWindowAndForm1)
{
    EXPECT_EQ(form1Size({12000, 8400}), (TwipsSize{11940, 7340}));
    EXPECT_EQ(form1Size({30, 900}), (TwipsSize{0, 0})) << "smaller than the margins";

    // A window whose frame takes 120 twips of the width, and titles of different lengths.
    const DiagramsLayout layout = diagramsLayout(
        {12000, 8400}, {{11940, 7350}, 11820, {2000, 300}, {1820, 240}, {1500, 375}});
    EXPECT_EQ(layout.chart1, (TwipsRect{0, 450, 11840, 2450}));
    EXPECT_EQ(layout.label1, (TwipsRect{4910, 150, 2000, 300}));
    EXPECT_EQ(layout.chart2, (TwipsRect{0, 4200, 11840, 2450}));
    EXPECT_EQ(layout.label2, (TwipsRect{5000, 3960, 1820, 240}));
    EXPECT_EQ(layout.button, (TwipsRect{5160, 3050, 1500, 375}));
    EXPECT_EQ(layout.dateLabel1Top, 2910);
    EXPECT_EQ(layout.dateLabel2Top, 6650);
}
