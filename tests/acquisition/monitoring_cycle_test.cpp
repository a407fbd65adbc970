#include "acquisition/sample.h"
#include "tests/acquisition/acquisition_rig.h"

namespace
{

class CicluMonitorizare : public AcquisitionRig
{
public:
    CicluMonitorizare()
    {
        QObject::connect(cycle.get(), &MonitoringCycle::stateChanged,
                         [this] { shownActive = station.monitorActive; });
        answerAfter(milliseconds(250));
    }
    auto exchanges() const { return line.written.count("TS0\r\n"); }
    /// Samples stored in that time.
    std::size_t samplesIn(milliseconds span)
    {
        records.clear();
        time.advance(span);
        return records.size();
    }

    bool shownActive = false;
    const QDateTime archiveMoment = wallTime(time.now().date(), QTime(23, 59, 50));
};

} // namespace

TEST_F(CicluMonitorizare, OneSampleTakesItsStepsInOrder)
{
    station.sensors[0].calibrationText = QStringLiteral("-0,5");
    cycle->start();
    EXPECT_TRUE(shownActive);
    time.advance(milliseconds(250));
    EXPECT_EQ(log, (QStringList{"diagrams", "autoclava1.mdb"}));
    EXPECT_EQ(station.sensors[0].value, 20);
    EXPECT_EQ(station.sensors[1].readingTime, time.now());
    station.diagramsOpen = false;
    time.advance(milliseconds(1250));
    cycle->stopAndClearDiagrams();
    EXPECT_EQ(log.mid(2), (QStringList{"autoclava1.mdb", "show", "clear"}));
    EXPECT_FALSE(shownActive);
}

TEST_F(CicluMonitorizare, LimitsMetExactlyAreAlarms)
{
    station.Diagrame[1].alarma_maxim = 200;
    station.sensors[2].calibrationText = station.sensors[3].calibrationText = "-1";
    for (const auto &[value, alarm] : std::vector<std::pair<double, bool>>{
             {9.9, true}, {10, true}, {10.1, false}, {137.9, false}, {138, true}}) {
        station.sensors[2].value = station.sensors[3].value = value + 1;
        completeSample(station, time.now());
        EXPECT_EQ(station.sensors[2].alarm, alarm) << value;
        EXPECT_EQ(station.sensors[3].alarm, value <= 10) << "its own diagram's limits";
    }
}

TEST_F(CicluMonitorizare, PeriodIsTheFirstDiagramsIntervalAfterTheSample)
{
    station.Diagrame[1].interval_scanare = 7; // kept and shown, without effect
    struct Row {
        qint16 interval, unit;
        qint64 period; // ms
    };
    for (const Row &row : {Row{1, 0, 1250}, Row{5, 1, 300'250}, Row{2, 2, 7'200'250},
                           Row{1, 3, 86'400'250}, Row{0, 0, 250}}) {
        station.Diagrame[0].interval_scanare = row.interval;
        station.Diagrame[0].masura_interval = row.unit;
        cycle->start();
        ASSERT_GE(samplesIn(milliseconds(2 * row.period + 251)), 2u);
        EXPECT_EQ(records[0].msecsTo(records[1]), row.period);
        cycle->stop();
        time.advance(milliseconds(250));
    }
    station.Diagrame[0].masura_interval = 4;
    EXPECT_THROW(cycle->start(), RuntimeError);
    EXPECT_FALSE(shownActive) << "an ended monitoring is not shown as running";
}

TEST_F(CicluMonitorizare, ADayIsArchivedOnceInItsSecondAndAMissedOneIsNotMadeUpFor)
{
    answerAfter(milliseconds(170)); // wakes would drift past the second's beginning
    const auto archivesUntil = [this](int day) {
        time.advanceTo(archiveMoment.addDays(day).addSecs(10));
        return archives.size();
    };
    cycle->start();
    EXPECT_EQ(archivesUntil(0), 1u);
    EXPECT_EQ(log.count("archive autoclava1.mdb"), 1);
    EXPECT_LT(time.ticks(), 5 * int(records.size())) << "asleep between the moments that matter";

    station.Diagrame[0].masura_interval = 2;
    time.advanceTo(archiveMoment.addDays(1).addSecs(-1));
    time.passSilently(milliseconds(2500)); // something blocks the event loop
    EXPECT_EQ(archivesUntil(1), 1u);
    whenArchived = [this] { time.passSilently(milliseconds(2500)); }; // 51 goes by unseen
    EXPECT_EQ(archivesUntil(2), 2u);
    EXPECT_EQ(archives[1], archiveMoment.addDays(2)) << "awake as its second begins";
    EXPECT_EQ(archivesUntil(3), 3u) << "a slow archive costs the next day nothing";

    whenArchived = [] {};
    time.advanceTo(archiveMoment.addDays(4).addMSecs(300));
    time.setClock(archiveMoment.addDays(4).addSecs(-3));
    EXPECT_EQ(archivesUntil(4), 4u) << "set back within the second";
    EXPECT_EQ(archivesUntil(5), 5u);
    time.advanceTo(archiveMoment.addDays(6).addMSecs(300));
    cycle->start();
    EXPECT_EQ(archivesUntil(6), 7u) << "a new start is a new run";
}

TEST_F(CicluMonitorizare, AClockThatWasSetIsNoticedWithinASecond)
{
    station.Diagrame[0].masura_interval = 1;
    station.Diagrame[0].interval_scanare = 10;
    for (const auto &[setBySeconds, samples] :
         std::vector<std::pair<qint64, std::size_t>>{{-3600, 1}, {3600, 1}, {60, 0}}) {
        cycle->start();
        time.advance(milliseconds(5000));
        time.setClock(time.now().addSecs(setBySeconds));
        EXPECT_EQ(samplesIn(milliseconds(1250)), samples) << setBySeconds;
    }
    station.Diagrame[0].interval_scanare = 1; // the operator shortens the interval
    EXPECT_EQ(samplesIn(milliseconds(1250)), 1u);
}

TEST_F(CicluMonitorizare, StopAndStartAtAnyMoment)
{
    cycle->start();
    time.advance(milliseconds(100));
    cycle->start(); // while the exchange waits
    EXPECT_EQ(exchanges(), 1);
    EXPECT_EQ(samplesIn(milliseconds(500)), 1u);
    cycle->start(); // while sleeping: the next moment is now
    EXPECT_EQ(samplesIn(milliseconds(300)), 1u);
    cycle->stop(); // between samples
    EXPECT_EQ(samplesIn(milliseconds(10'000)), 0u);
    EXPECT_EQ(exchanges(), 2);
    cycle->start();
    cycle->stop(); // while the exchange waits: its reply is not wanted
    EXPECT_FALSE(shownActive);
    cycle->start();       // ... now it is
    whenStored = [this] { // from behind a message box
        cycle->stop();
        cycle->start();
    };
    EXPECT_EQ(samplesIn(milliseconds(2800)), 3u);
    EXPECT_EQ(exchanges(), 5);
}

TEST_F(CicluMonitorizare, WhatEndsMonitoringIsShown)
{
    answerAfter(milliseconds(2500)); // too late
    cycle->start();
    EXPECT_EQ(samplesIn(milliseconds(60'000)), 0u);
    EXPECT_FALSE(shownActive);
    EXPECT_EQ(op.told.size(), 1) << "no retry";

    answerAfter(milliseconds(100));
    whenStored = [this] { station.monitorActive = false; }; // the storage file is missing
    cycle->start();
    EXPECT_EQ(samplesIn(milliseconds(60'000)), 1u);
    EXPECT_FALSE(shownActive);

    whenArchived = [this] { cycle->stop(); };
    time.advanceTo(archiveMoment);
    cycle->start();
    EXPECT_EQ(archives.size(), 1u);
    EXPECT_EQ(exchanges(), 2) << "stopped behind the archive's message box";

    time.advance(milliseconds(2000));
    line.missing = true;
    EXPECT_THROW(cycle->start(), RuntimeError);
    EXPECT_FALSE(shownActive);
}
