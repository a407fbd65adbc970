#include "tests/support/test_time.h"

#include <algorithm>

using std::chrono::milliseconds;

class TestTime::TestTimer final : public Timer
{
public:
    TestTimer(TestTime &time, std::function<void()> tick) : m_time(time), m_tick(std::move(tick)) {}
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

TestTime::TestTime(const QDateTime &start) : m_now(start) {}

std::unique_ptr<Timer> TestTime::createTimer(const QString &, std::function<void()> tick)
{
    return std::make_unique<TestTimer>(*this, std::move(tick));
}

void TestTime::advance(milliseconds span)
{
    const milliseconds end = m_elapsed + span;
    const auto isEarlier = [](const auto &a, const auto &b) { return a.second < b.second; };
    for (;;) {
        const auto next = std::min_element(m_active.begin(), m_active.end(), isEarlier);
        if (next == m_active.end() || next->second.first > end)
            break;
        if (next->second.first > m_elapsed)
            passSilently(next->second.first - m_elapsed);
        ++m_ticks;
        next->first->fire();
    }
    if (end > m_elapsed)
        passSilently(end - m_elapsed);
}

void TestTime::advanceTo(const QDateTime &moment)
{
    advance(milliseconds(m_now.msecsTo(moment)));
}

void TestTime::passSilently(milliseconds span)
{
    m_elapsed += span;
    m_now = m_now.addMSecs(span.count());
}
