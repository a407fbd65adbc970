#include "tests/support/test_time.h"

#include <algorithm>

using std::chrono::milliseconds;

class TestTime::TestTimer final : public Timer
{
public:
    TestTimer(TestTime &time, std::function<void()> tick) : m_time(time), m_tick(std::move(tick))
    {
        m_time.m_timers.push_back(this);
    }
    ~TestTimer() override { std::erase(m_time.m_timers, this); }
    Q_DISABLE_COPY_MOVE(TestTimer)

    void start(milliseconds after) override
    {
        m_due = m_time.m_elapsed + std::max(after, milliseconds(0));
        m_turn = ++m_time.m_starts;
        m_active = true;
    }
    void stop() override { m_active = false; }
    bool isActive() const override { return m_active; }

    milliseconds due() const { return m_due; }
    bool isBefore(const TestTimer &other) const
    {
        return m_due != other.m_due ? m_due < other.m_due : m_turn < other.m_turn;
    }
    void fire()
    {
        m_active = false;
        const auto tick = m_tick; // the tick may destroy this timer
        tick();
    }

private:
    TestTime &m_time;
    std::function<void()> m_tick;
    milliseconds m_due{0};
    int m_turn = 0; // timers due at the same moment tick in the order of their starts
    bool m_active = false;
};

TestTime::TestTime(const QDateTime &start) : m_now(start) {}

TestTime::~TestTime() = default;

std::unique_ptr<Timer> TestTime::createTimer(const QString &, std::function<void()> tick)
{
    return std::make_unique<TestTimer>(*this, std::move(tick));
}

TestTime::TestTimer *TestTime::nextDue(milliseconds limit) const
{
    TestTimer *next = nullptr;
    for (TestTimer *timer : m_timers)
        if (timer->isActive() && timer->due() <= limit && (!next || timer->isBefore(*next)))
            next = timer;
    return next;
}

void TestTime::advance(milliseconds span)
{
    const milliseconds end = m_elapsed + span;
    while (TestTimer *timer = nextDue(end)) {
        if (timer->due() > m_elapsed)
            passSilently(timer->due() - m_elapsed);
        ++m_ticks;
        timer->fire();
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
