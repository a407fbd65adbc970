#include "diagrams/layout.h"

#include <gtest/gtest.h>

TEST(DiagramsLayout, PartsFollowTheMainWindowAndForm1)
{
    const TwipsSize main{12000, 8400};
    const TwipsSize outer = form1Size(main);
    EXPECT_EQ(outer.width, 11940);
    EXPECT_EQ(outer.height, 7340);

    // A window whose frame takes 120 twips of the width, and titles of different lengths.
    const DiagramsLayout layout =
        diagramsLayout(main, {{11940, 7350}, 11820, {2000, 300}, {1820, 240}, {1500, 375}});
    struct {
        const char *part;
        TwipsRect actual;
        TwipsRect expected;
    } const rows[] = {
        {"MSChart1", layout.chart1, {0, 450, 11840, 2450}},
        {"Label1", layout.label1, {4910, 150, 2000, 300}},
        {"MSChart2", layout.chart2, {0, 4200, 11840, 2450}},
        {"Label2", layout.label2, {5000, 3960, 1820, 240}},
        {"CentruControlCommand", layout.button, {5160, 3050, 1500, 375}},
        {"DateLabel1(0)", {0, layout.dateLabel1Top, 0, 0}, {0, 2910, 0, 0}},
        {"DateLabel1(1)", {0, layout.dateLabel2Top, 0, 0}, {0, 6650, 0, 0}},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(row.actual.left, row.expected.left) << row.part;
        EXPECT_EQ(row.actual.top, row.expected.top) << row.part;
        EXPECT_EQ(row.actual.width, row.expected.width) << row.part;
        EXPECT_EQ(row.actual.height, row.expected.height) << row.part;
    }

    EXPECT_EQ(form1Size({30, 900}).width, 0) << "a main window smaller than the margins";
    EXPECT_EQ(form1Size({30, 900}).height, 0);
}
