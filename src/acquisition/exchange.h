#pragma once

#include "acquisition/trm10c.h"

#include <QObject>
#include <memory>

class Operator;
class Scheduler;
class SerialLine;
class Timer;
struct Station;

/// The dialogue with the recorder that reads all channels once: Idle -> Waiting (for the reply) ->
/// Draining (bytes after the reply) -> Idle, or Waiting -> Telling (the operator of the failure) ->
/// Idle. The line is closed when Idle, with one exception: if monitoring was stopped during the
/// exchange, the line stays open with the reply unread until the next exchange.
class Exchange : public QObject
{
    Q_OBJECT
public:
    /// All must outlive this object. The reply's limit of 2000 ms is a timer named "TimerEroare".
    Exchange(Station &station, SerialLine &line, Scheduler &scheduler, Operator &op,
             QObject *parent = nullptr);
    ~Exchange() override;

    /// Sends the read commands; finished() follows from the event loop. Does nothing while an
    /// exchange is under way. The argument, the number of sensors, is not used: the recorder is
    /// always asked for all channels. Throws RuntimeError when the line cannot be opened; no
    /// exchange is then under way.
    void interogare_aparat(const QString &sensorCount);

    /// Cancels an exchange under way: the line is closed, no message, no signal.
    void abandon();

signals:
    /// On success the sensors have new values. On failure no value has changed; a missing or wrong
    /// reply has been reported to the operator, a stop of the monitoring has not.
    void finished(bool failed);

private:
    enum class State { Idle, Waiting, Draining, Telling };

    void onReadyRead();
    void onTimeout();
    void recheck();
    void checkForReply();
    void takeReply();
    void drain();
    void giveUp();
    void finish(bool failed);
    void storeValues(const trm10c::Values &values);

    Station &m_station;
    SerialLine &m_line;
    Operator &m_operator;
    std::unique_ptr<Timer> m_timerEroare;
    std::unique_ptr<Timer> m_recheck;
    State m_state = State::Idle;
};
