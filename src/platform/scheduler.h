#pragma once

#include <QString>
#include <chrono>
#include <functional>
#include <memory>

class QObject;

/// A one-shot timer. Destroying or stopping it cancels the tick.
class Timer
{
public:
    virtual ~Timer() = default;
    /// Ticks once after the given time; starting a running timer restarts it.
    virtual void start(std::chrono::milliseconds after) = 0;
    virtual void stop() = 0;
    virtual bool isActive() const = 0;
};

/// Where timers come from: the event loop in the program, the test clock in tests.
class Scheduler
{
public:
    virtual ~Scheduler() = default;
    /// The caller owns the timer; `tick` must stay callable until the timer is stopped or
    /// destroyed.
    virtual std::unique_ptr<Timer> createTimer(const QString &name, std::function<void()> tick) = 0;
};

/// Precise timers of the event loop, children of `parent` under their names.
class QtScheduler final : public Scheduler
{
public:
    /// `parent` must outlive every timer; it is not owned.
    explicit QtScheduler(QObject &parent) : m_parent(parent) {}
    std::unique_ptr<Timer> createTimer(const QString &name, std::function<void()> tick) override;

private:
    QObject &m_parent;
};
