#pragma once

#include <QByteArray>
#include <gtest/gtest.h>

/// Runs all tests of a program in an application with windows.
template <typename Application>
int runWindowTests(int argc, char **argv)
{
    // The build asks each test program for its tests where there may be no display.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const Application application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
