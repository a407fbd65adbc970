#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    // The build asks each test program for its tests where there may be no display.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
