#pragma once

#include "acquisition/exchange.h"
#include "acquisition/monitoring_cycle.h"
#include "storage/measurement_store.h"
#include "tests/acquisition/acquisition_rig.h"
#include "tests/support/fake_operator.h"
#include "tests/support/fake_serial_line.h"
#include "tests/support/test_time.h"

#include <QTemporaryDir>

/// What a storage or archive file holds.
struct StoredDay {
    std::uint32_t rows = 0;
    std::uint32_t alarms = 0;
    bool idsInOrder = true; ///< 1, 2, 3, ... without a gap
    bool sound = true;      ///< the checker found nothing
};
StoredDay storedDay(const QString &path);

/// The station without windows: real cycle, exchange and storage in a folder of its own, with the
/// test clock and a recorder that answers at once. Every hundredth reading is an alarm.
class SimulatedStation : private DiagramFeed
{
public:
    explicit SimulatedStation(const QDateTime &start);

    QString storagePath() const { return station.storagePath(station.NumeFisier[0]); }
    QString archivePath(QDate day) const;
    qint64 archives() const;

    QTemporaryDir folder;
    TestTime time;
    Station station = sampleStation();
    FakeOperator op;
    FakeSerialLine line;
    MeasurementStore store;
    Exchange exchange{station, line, time, op};
    MonitoringCycle cycle{station, exchange, *this, store, time, time};
    int stored = 0; ///< samples

private:
    void adauga_citiri(const std::vector<Sensor> &) override {}
    void showAtOrigin() override {}
    void goleste_diagramele() override {}

    std::unique_ptr<Timer> m_answer;
    int m_exchanges = 0;
};
