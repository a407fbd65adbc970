#pragma once

#include "platform/clock.h"
#include "platform/scheduler.h"

#include <map>

/// A clock and its timers for tests: time passes only when a test says so, in no time at all.
class TestTime final : public Clock, public Scheduler
{
public:
    explicit TestTime(const QDateTime &start = wallTime(QDate(2026, 3, 7), QTime(9, 5, 0)));

    QDateTime now() const override { return m_now; }
    std::unique_ptr<Timer> createTimer(const QString &name, std::function<void()> tick) override;

    /// Lets time pass and ticks every timer that falls due, in order, at its own moment.
    void advance(std::chrono::milliseconds span);
    /// advance() to a moment that lies ahead.
    void advanceTo(const QDateTime &moment);
    /// The clock is set, as an operator or a daylight-saving change does: timers do not notice.
    void setClock(const QDateTime &moment) { m_now = moment; }
    /// The wall clock goes on by itself, as while a blocking call runs: no timer ticks.
    void passSilently(std::chrono::milliseconds span);
    /// How many ticks there were: what the process was woken for.
    int ticks() const { return m_ticks; }

private:
    class TestTimer;

    QDateTime m_now;
    std::chrono::milliseconds m_elapsed{0};
    /// When each is due; those due at the same moment tick in the order of their starts.
    std::map<const TestTimer *, std::pair<std::chrono::milliseconds, int>> m_active;
    int m_ticks = 0;
    int m_starts = 0;
};
