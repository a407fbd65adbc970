#pragma once

#include "platform/clock.h"
#include "platform/scheduler.h"

#include <algorithm>
#include <map>

/// A clock and its timers for tests: time passes only when a test says so, in no time at all.
class TestTime final : public Clock, public Scheduler
{
public:
    using milliseconds = std::chrono::milliseconds;

    explicit TestTime(const QDateTime &start = wallTime(QDate(2026, 3, 7), QTime(9, 5, 0)))
        : m_now(start)
    {
    }

    QDateTime now() const override { return m_now; }
    std::unique_ptr<Timer> createTimer(const QString &, std::function<void()> tick) override
    {
        return std::make_unique<TestTimer>(*this, std::move(tick));
    }

    /// Lets time pass and ticks every timer that falls due, in order, at its own moment.
    void advance(milliseconds span)
    {
        const milliseconds end = m_elapsed + span;
        const auto isEarlier = [](const auto &a, const auto &b) { return a.second < b.second; };
        for (;;) {
            const auto next = std::min_element(m_active.begin(), m_active.end(), isEarlier);
            if (next == m_active.end() || next->second.first > end)
                break;
            passSilently(std::max(next->second.first - m_elapsed, milliseconds(0)));
            ++m_ticks;
            next->first->fire();
        }
        passSilently(std::max(end - m_elapsed, milliseconds(0)));
    }
    /// advance() to a moment that lies ahead.
    void advanceTo(const QDateTime &moment) { advance(milliseconds(m_now.msecsTo(moment))); }
    /// The clock is set, as an operator or a daylight-saving change does: timers do not notice.
    void setClock(const QDateTime &moment) { m_now = moment; }
    /// The wall clock goes on by itself, as while a blocking call runs: no timer ticks.
    void passSilently(milliseconds span)
    {
        m_elapsed += span;
        m_now = m_now.addMSecs(span.count());
    }
    /// How many ticks there were: what the process was woken for.
    int ticks() const { return m_ticks; }

private:
    class TestTimer final : public Timer
    {
    public:
        TestTimer(TestTime &time, std::function<void()> tick)
            : m_time(time), m_tick(std::move(tick))
        {
        }
        ~TestTimer() override { stop(); }
        Q_DISABLE_COPY_MOVE(TestTimer)

        void start(milliseconds after) override
        {
            const milliseconds due = m_time.m_elapsed + std::max(after, milliseconds(0));
            m_time.m_active[this] = {due, ++m_time.m_starts};
        }
        void stop() override { m_time.m_active.erase(this); }
        bool isActive() const override { return m_time.m_active.contains(this); }

        void fire() const
        {
            m_time.m_active.erase(this);
            const auto tick = m_tick; // the tick may destroy this timer
            tick();
        }

    private:
        TestTime &m_time;
        std::function<void()> m_tick;
    };

    QDateTime m_now;
    milliseconds m_elapsed{0};
    /// When each is due; those due at the same moment tick in the order of their starts.
    std::map<const TestTimer *, std::pair<milliseconds, int>> m_active;
    int m_ticks = 0;
    int m_starts = 0;
};
