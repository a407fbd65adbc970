#pragma once

#include "app/settings/settings.h"
#include "chart/chart_grid.h"
#include "diagrams/live_diagrams.h"
#include "tests/support/fake_operator.h"
#include "tests/support/runtime_errors.h"
#include "tests/support/station_folder.h"
#include "tests/support/test_time.h"

#include <gtest/gtest.h>

/// A station with the shipped settings and its two live diagrams, as the dialogs find it.
class DialogRig : public ::testing::Test
{
protected:
    DialogRig()
    {
        station.appFolder = folder.path();
        station.locale = QLocale(QLocale::Romanian);
        diagrams.loadTables();
        diagrams.loadSettings();
    }

    /// The settings file after these lines were written: they stand first, their old lines are
    /// gone.
    QByteArray configWith(const QByteArrayList &lines) const
    {
        QByteArrayList rest = folder.config().split('\n');
        for (const QByteArray &line : lines)
            rest.removeIf([key = line.first(line.indexOf(',') + 1)](const QByteArray &old) {
                return old.startsWith(key);
            });
        return lines.join("\r\n") + "\r\n" + rest.join('\n');
    }

    StationFolder folder;
    Station station;
    FakeOperator op;
    TestTime time;
    Settings settings{station, op};
    LiveDiagrams diagrams{station, settings, time};
};
