#pragma once

#include "acquisition/diagram_feed.h"
#include "acquisition/exchange.h"
#include "acquisition/monitoring_cycle.h"
#include "app/settings/station.h"
#include "storage/sample_store.h"
#include "tests/support/fake_operator.h"
#include "tests/support/fake_serial_line.h"
#include "tests/support/test_time.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>

using std::chrono::milliseconds;

/// A monitored station: six sensors without an offset, alarms at 10 and 138, a sample each second.
inline Station sampleStation()
{
    Station station;
    station.monitorActive = station.diagramsOpen = true;
    station.NumeFisier[0] = QStringLiteral("autoclava1.mdb");
    Diagrama diagram;
    diagram.alarma_minim = 10;
    diagram.alarma_maxim = 138;
    diagram.interval_scanare = 1;
    station.Diagrame.assign(2, diagram);
    station.sensors.resize(6);
    for (std::size_t i = 0; i < 6; ++i) {
        station.sensors[i].calibrationText = QStringLiteral("0");
        station.sensors[i].diagram = static_cast<quint8>(i / 3);
    }
    return station;
}

/// A well-formed reply whose six fields are the given texts, padded on the left.
inline QByteArray replyWith(const QStringList &fields)
{
    QString reply(22, QLatin1Char('#'));
    for (const QString &field : fields)
        reply += QStringLiteral("5555555555555555.") + field.rightJustified(10);
    return reply.toLatin1() + "\r\n";
}

/// Everything the acquisition needs, with the test on the other side of each seam.
class AcquisitionRig : public ::testing::Test, public DiagramFeed, public SampleStore
{
public:
    void adauga_citiri(const std::vector<Sensor> &) override { log += "diagrams"; }
    void showAtOrigin() override { log += "show"; }
    void goleste_diagramele() override { log += "clear"; }
    void adauga_inregistrare(const QString &name) override
    {
        log += name;
        records.push_back(time.now());
        whenStored();
    }
    void arhiveaza_baza_date(const QString &name) override
    {
        log += "archive " + name;
        archives.push_back(time.now());
        whenArchived();
    }
    /// From now on the recorder answers every request after that time.
    void answerAfter(milliseconds delay)
    {
        m_answer = time.createTimer("recorder", [this] { line.arrive(reply); });
        line.onWrite = [this, delay](const QByteArray &command) {
            if (command.startsWith("FM0"))
                m_answer->start(delay);
        };
    }

    TestTime time;
    Station station = sampleStation();
    FakeSerialLine line;
    FakeOperator op;
    std::unique_ptr<Exchange> exchange = std::make_unique<Exchange>(station, line, time, op);
    std::unique_ptr<MonitoringCycle> cycle =
        std::make_unique<MonitoringCycle>(station, *exchange, *this, *this, time, time);
    QStringList log;                          ///< what was drawn, stored and archived
    std::vector<QDateTime> records, archives; ///< when
    std::function<void()> whenStored = [] {}; ///< what happens behind a box of the store
    std::function<void()> whenArchived = [] {};
    QByteArray reply = replyWith({"20.5", "21", "22", "23", "24", "25"});

private:
    std::unique_ptr<Timer> m_answer;
};
