#include "platform/scheduler.h"

#include <QTimer>

namespace
{

class EventLoopTimer final : public Timer
{
public:
    EventLoopTimer(QObject &parent, const QString &name, std::function<void()> tick)
        : m_timer(&parent)
    {
        m_timer.setObjectName(name);
        m_timer.setSingleShot(true);
        // The default timer may be 5 % late or early: 100 ms of the reply limit.
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, std::move(tick));
    }

    void start(std::chrono::milliseconds after) override { m_timer.start(after); }
    void stop() override { m_timer.stop(); }
    bool isActive() const override { return m_timer.isActive(); }

private:
    QTimer m_timer;
};

} // namespace

std::unique_ptr<Timer> QtScheduler::createTimer(const QString &name, std::function<void()> tick)
{
    return std::make_unique<EventLoopTimer>(m_parent, name, std::move(tick));
}
