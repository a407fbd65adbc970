#pragma once

#include "chart/chart_grid.h"
#include "diagrams/live_diagrams.h"
#include "tests/support/station_rig.h"
#include "tests/support/test_time.h"

/// Live diagrams on the shipped settings, at 09:05:00.250 on 7 March 2026.
class DiagramsRig : public StationRig
{
protected:
    void load(LiveDiagrams &diagrams)
    {
        diagrams.loadTables();
        diagrams.loadSettings();
    }
    /// One sample a second after the last: the value for all sensors.
    void sample(double value)
    {
        time.passSilently(std::chrono::seconds(1));
        for (Sensor &sensor : station.sensors)
            sensor.value = value;
        live.adauga_citiri(station.sensors);
    }
    static double valueAt(ChartGrid &chart, int column, int row)
    {
        return chart.columnData(column)[static_cast<std::size_t>(row - 1)];
    }

    TestTime time{wallTime(QDate(2026, 3, 7), QTime(9, 5, 0, 250))};
    LiveDiagrams live{station, settings, time};
};
