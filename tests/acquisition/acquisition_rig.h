#pragma once

#include "acquisition/exchange.h"
#include "acquisition/monitoring_cycle.h"
#include "acquisition/ports.h"
#include "app/settings/station.h"
#include "tests/support/fake_operator.h"
#include "tests/support/fake_serial_line.h"
#include "tests/support/test_time.h"

#include <gtest/gtest.h>
#include <memory>

using std::chrono::milliseconds;

/// A station with two diagrams (alarms at 10 and 138) and six sensors without an offset, sampling
/// every second.
Station sampleStation();

/// A well-formed reply whose six fields are the given texts, padded on the left.
QByteArray replyWith(const QStringList &fields);

/// Everything the acquisition needs, with the test on the other side of each seam.
class AcquisitionRig : public ::testing::Test, public DiagramFeed, public SampleStore
{
public:
    AcquisitionRig();

    void adauga_citiri(const std::vector<Sensor> &) override { log += "diagrams"; }
    void showAtOrigin() override { log += "show"; }
    void goleste_diagramele() override { log += "clear"; }
    void adauga_inregistrare(const QString &name) override;
    void arhiveaza_baza_date(const QString &name) override;

    /// From now on the recorder answers every request after that time.
    void answerAfter(milliseconds delay);

    TestTime time;
    Station station = sampleStation();
    FakeSerialLine line;
    FakeOperator op;
    std::unique_ptr<Exchange> exchange;
    std::unique_ptr<MonitoringCycle> cycle;

    QStringList log;                  ///< what was drawn, stored and archived, in order
    std::vector<QDateTime> records;   ///< when
    std::vector<QDateTime> archives;  ///< when
    std::function<void()> whenStored; ///< what happens behind a message box of the store
    std::function<void()> whenArchived;
    QByteArray reply = replyWith({"20.5", "21", "22", "23", "24", "25"});

private:
    std::unique_ptr<Timer> m_answer;
};
