#pragma once

#include "app/settings/settings.h"
#include "tests/support/fake_operator.h"
#include "tests/support/runtime_errors.h"
#include "tests/support/station_folder.h"

#include <gtest/gtest.h>

/// A station with the shipped settings in a folder of its own.
class StationRig : public ::testing::Test
{
protected:
    StationRig()
    {
        station.appFolder = folder.path();
        station.locale = QLocale(QLocale::Romanian);
    }

    StationFolder folder;
    Station station;
    FakeOperator op;
    Settings settings{station, op};
};
