#pragma once

#include <QDate>
#include <QObject>
#include <memory>

class Clock;
class DiagramFeed;
class Exchange;
class SampleStore;
class Scheduler;
class Timer;
struct Station;

/// The monitoring cycle: decides when the recorder is read, completes each sample, draws and stores
/// it, and starts the archive at 23:59:50.
///
/// A pass reads the clock and does what is due. Between passes the process sleeps until the next
/// moment that can matter, at most a second, so that it notices when the clock was set. Start and
/// stop may come at any moment, even while a message box of the pass is open; there is never more
/// than one pass, nor more than one exchange on the line.
///
/// An exception that leaves start() or a timer's tick has ended monitoring.
class MonitoringCycle : public QObject
{
    Q_OBJECT
public:
    /// All must outlive this object.
    MonitoringCycle(Station &station, Exchange &exchange, DiagramFeed &diagrams, SampleStore &store,
                    const Clock &clock, Scheduler &scheduler, QObject *parent = nullptr);
    ~MonitoringCycle() override;

    /// Starts monitoring with a sample now; while it runs, restarts the schedule. An exchange under
    /// way continues and provides that first sample. Throws RuntimeError when the line cannot be
    /// opened or the sampling interval has no valid unit.
    void start();

    /// No further exchange begins. One under way ends unread.
    void stop();

    /// Stops, clears the diagrams and brings their window up.
    void stopAndClearDiagrams();

signals:
    /// Station::monitorActive may have changed.
    void stateChanged();

private:
    enum class Phase { Stopped, Sleeping, Passing, Exchanging };

    void ciclu_monitorizare();
    void pass();
    void archiveAtEndOfDay();
    void correctSchedule();
    void sleepUntilNextMoment();
    void onExchangeFinished(bool failed);
    void takeSample();
    QString storageName() const;
    void end();
    template <typename Step>
    void endOnFailure(Step step);

    Station &m_station;
    Exchange &m_exchange;
    DiagramFeed &m_diagrams;
    SampleStore &m_store;
    const Clock &m_clock;
    std::unique_ptr<Timer> m_wakeUp;
    Phase m_phase = Phase::Stopped;
    QDate m_archivedDay; ///< by this run, until 23:59:51 of that day
};
