#include "acquisition/sample.h"
#include "tests/acquisition/acquisition_rig.h"

namespace
{

class CicluMonitorizare : public AcquisitionRig
{
public:
    CicluMonitorizare() { followState(); }
    void followState()
    {
        QObject::connect(cycle.get(), &MonitoringCycle::stateChanged,
                         [this] { shownActive = station.monitorActive; });
    }
    QDateTime today(int hour, int minute, int second) const
    {
        return wallTime(time.now().date(), QTime(hour, minute, second));
    }
    auto exchanges() const { return line.written.count("TS0\r\n"); }

    bool shownActive = false;
};

} // namespace

TEST_F(CicluMonitorizare, OneSampleTakesItsStepsInOrder)
{
    answerAfter(milliseconds(250));
    station.sensors[0].calibrationText = QStringLiteral("-0,5");
    cycle->start();
    EXPECT_TRUE(shownActive);
    time.advance(milliseconds(250));
    EXPECT_EQ(log, (QStringList{"diagrams", "autoclava1.mdb"}));
    EXPECT_EQ(station.sensors[0].value, 20);
    EXPECT_EQ(station.sensors[1].readingTime, time.now());
    station.diagramsOpen = false;
    time.advance(milliseconds(1250));
    EXPECT_EQ(log.mid(2), QStringList{"autoclava1.mdb"});
    cycle->restartDiagrams();
    EXPECT_EQ(log.mid(3), (QStringList{"show", "clear"}));
    EXPECT_FALSE(shownActive);
}

TEST_F(CicluMonitorizare, LimitsMetExactlyAreAlarms)
{
    station.Diagrame[1].alarma_maxim = 200;
    const std::vector<std::pair<double, bool>> rows{{9.9, true},    {10, true},  {10.1, false},
                                                    {137.9, false}, {138, true}, {138.1, true}};
    for (const auto &[value, alarm] : rows) {
        for (Sensor &sensor : station.sensors)
            sensor.value = value;
        completeSample(station, time.now());
        EXPECT_EQ(station.sensors[2].alarm, alarm) << value;
        EXPECT_EQ(station.sensors[3].alarm, value <= 10) << "its own diagram's limits";
    }
    station.sensors[3].calibrationText = QStringLiteral("1x");
    EXPECT_THROW(completeSample(station, time.now()), RuntimeError);
}

TEST_F(CicluMonitorizare, PeriodIsTheFirstDiagramsIntervalAfterTheSample)
{
    struct Row {
        qint16 interval, unit;
        qint64 expectedMs;
    };
    answerAfter(milliseconds(250));
    station.Diagrame[1].interval_scanare = 7; // kept and shown, without effect
    for (const Row &row : {Row{1, 0, 1250}, Row{5, 1, 300'250}, Row{2, 2, 7'200'250},
                           Row{1, 3, 86'400'250}, Row{0, 0, 250}}) {
        station.Diagrame[0].interval_scanare = row.interval;
        station.Diagrame[0].masura_interval = row.unit;
        records.clear();
        cycle->start();
        time.advance(milliseconds(3 * row.expectedMs + 1));
        cycle->stop();
        time.advance(milliseconds(250));
        ASSERT_GE(records.size(), 3u);
        EXPECT_EQ(records[0].msecsTo(records[1]), row.expectedMs);
        EXPECT_EQ(records[1].msecsTo(records[2]), row.expectedMs);
    }
    station.Diagrame[0].masura_interval = 4;
    EXPECT_THROW(cycle->start(), RuntimeError);
    EXPECT_FALSE(shownActive) << "an ended monitoring is not shown as running";
}

TEST_F(CicluMonitorizare, EachDayIsArchivedOnceAtItsSecond)
{
    answerAfter(milliseconds(150));
    const QDateTime first = today(23, 59, 50);
    cycle->start();
    time.advanceTo(first.addDays(1).addSecs(5));
    ASSERT_EQ(archives.size(), 2u);
    for (std::size_t day = 0; day < archives.size(); ++day) {
        EXPECT_GE(archives[day], first.addDays(qint64(day)));
        EXPECT_LT(archives[day], first.addDays(qint64(day)).addSecs(1));
    }
    EXPECT_EQ(log.count("archive autoclava1.mdb"), 2);
    EXPECT_TRUE(station.monitorActive);
    EXPECT_LT(time.ticks(), 5 * int(records.size())) << "asleep between the moments that matter";
}

TEST_F(CicluMonitorizare, ASecondThatNoPassSeesIsNotMadeUpFor)
{
    const QDateTime midnight = today(0, 0, 0).addDays(1);
    station.Diagrame[0].masura_interval = 2;
    answerAfter(milliseconds(150));
    cycle->start();
    time.advanceTo(today(23, 59, 49));
    time.passSilently(milliseconds(2500)); // something blocks the event loop
    time.advanceTo(midnight);
    EXPECT_TRUE(archives.empty());

    whenArchived = [this] { time.passSilently(milliseconds(2500)); }; // 51 goes by unseen
    time.advanceTo(midnight.addDays(1));
    ASSERT_EQ(archives.size(), 1u);
    EXPECT_EQ(archives[0].time(), QTime(23, 59, 50)) << "awake as its second begins";
    time.advanceTo(midnight.addDays(2));
    EXPECT_EQ(archives.size(), 1u) << "armed again only at 23:59:51";
    time.advanceTo(midnight.addDays(3));
    EXPECT_EQ(archives.size(), 2u);
}

TEST_F(CicluMonitorizare, AClockThatWasSetIsNoticedWithinASecond)
{
    struct Row {
        const char *what;
        qint64 setBySeconds;
        std::size_t samplesAtOnce;
    };
    answerAfter(milliseconds(100));
    station.Diagrame[0].masura_interval = 1;
    station.Diagrame[0].interval_scanare = 10;
    for (const Row &row :
         {Row{"back", -3600, 1}, Row{"forward past the moment", 3600, 1}, Row{"forward", 60, 0}}) {
        cycle->start();
        time.advance(milliseconds(5000));
        const std::size_t before = records.size();
        time.setClock(time.now().addSecs(row.setBySeconds));
        time.advance(milliseconds(1100));
        EXPECT_EQ(records.size() - before, row.samplesAtOnce) << row.what;
    }
    const std::size_t before = records.size();
    station.Diagrame[0].interval_scanare = 1; // the operator shortens the interval
    time.advance(milliseconds(1100));
    EXPECT_EQ(records.size() - before, 1u);
}

TEST_F(CicluMonitorizare, StopAndStartAtAnyMoment)
{
    answerAfter(milliseconds(250));
    cycle->start();
    time.advance(milliseconds(100));
    cycle->start(); // while the exchange waits
    EXPECT_EQ(exchanges(), 1);
    time.advance(milliseconds(500));
    EXPECT_EQ(records.size(), 1u);
    cycle->start(); // while sleeping: the next moment is now
    EXPECT_EQ(exchanges(), 2);
    time.advance(milliseconds(300));
    EXPECT_EQ(records.size(), 2u);
    cycle->stop(); // between samples
    time.advance(milliseconds(10'000));
    EXPECT_EQ(exchanges(), 2);
    EXPECT_FALSE(shownActive);

    cycle->start();
    cycle->stop();  // while the exchange waits: its reply is not wanted
    cycle->start(); // ... now it is
    time.advance(milliseconds(250));
    EXPECT_EQ(records.size(), 3u);
    whenStored = [this] { // from behind a message box
        whenStored = nullptr;
        cycle->stop();
        cycle->start();
    };
    time.advance(milliseconds(2500));
    EXPECT_EQ(records.size(), 5u);
    EXPECT_EQ(exchanges(), 5);
}

TEST_F(CicluMonitorizare, WhatEndsMonitoringIsShown)
{
    answerAfter(milliseconds(2500)); // too late
    cycle->start();
    time.advance(milliseconds(60'000));
    EXPECT_FALSE(shownActive);
    EXPECT_EQ(op.told.size(), 1) << "no retry";
    EXPECT_TRUE(records.empty());

    answerAfter(milliseconds(100));
    whenStored = [this] { station.monitorActive = false; }; // the storage file is missing
    cycle->start();
    time.advance(milliseconds(60'000));
    EXPECT_EQ(records.size(), 1u);
    EXPECT_FALSE(shownActive);

    whenArchived = [this] { cycle->stop(); };
    time.advanceTo(today(23, 59, 50));
    line.written.clear();
    cycle->start();
    EXPECT_EQ(archives.size(), 1u);
    EXPECT_TRUE(line.written.isEmpty()) << "stopped behind the archive's message box";

    whenArchived = nullptr;
    line.missing = true;
    EXPECT_THROW(cycle->start(), RuntimeError);
    EXPECT_FALSE(shownActive);
}

TEST_F(CicluMonitorizare, MayBeDestroyedAtAnyMoment)
{
    answerAfter(milliseconds(100));
    whenStored = [this] { cycle.reset(); };
    cycle->start();
    time.advance(milliseconds(100));
    EXPECT_EQ(records.size(), 1u);

    cycle = std::make_unique<MonitoringCycle>(station, *exchange, *this, *this, time, time);
    cycle->start();
    cycle.reset(); // while the exchange waits
    time.advance(milliseconds(100));
    EXPECT_EQ(records.size(), 1u);
}
