#pragma once

#include "acquisition/trm10c.h"

#include <QObject>
#include <memory>

class Operator;
class Scheduler;
class SerialLine;
class Timer;
struct Station;

/// The dialogue with the recorder that reads all six channels once: Idle -> Waiting (for the reply)
/// -> Draining (what comes behind it) -> Idle, or Waiting -> Telling (the operator of the failure)
/// -> Idle. The line is open only in between, with one exception: an exchange whose monitoring was
/// stopped meanwhile leaves it open with the reply unread, and the next one finds it so.
class Exchange : public QObject
{
    Q_OBJECT
public:
    /// All must outlive this object. The reply's limit of 2000 ms is a timer named "TimerEroare".
    Exchange(Station &station, SerialLine &line, Scheduler &scheduler, Operator &op,
             QObject *parent = nullptr);
    ~Exchange() override;

    /// Sends the read commands; finished() follows from the event loop. Does nothing while an
    /// exchange is under way. The text, the number of sensors, is not used: the recorder is always
    /// asked for six channels. Throws RuntimeError when the line cannot be opened; no exchange is
    /// then under way.
    void interogare_aparat(const QString &sensorCount);

    /// Cancels an exchange under way: the line is closed, no message, no signal.
    void abandon();

signals:
    /// Not failed: the values of the first six sensors are new. Failed: no value was touched; a
    /// silent or wrong recorder has been reported to the operator, a stopped monitoring has not.
    void finished(bool failed);

private:
    enum class State { Idle, Waiting, Draining, Telling };

    void onReadyRead();
    void onTimeout();
    void lookAgain();
    void lookForReply();
    void takeReply();
    void drain();
    void giveUp();
    void finish(bool failed);
    void storeValues(const trm10c::Values &values);

    Station &m_station;
    SerialLine &m_line;
    Operator &m_operator;
    std::unique_ptr<Timer> m_timerEroare;
    std::unique_ptr<Timer> m_nextLook;
    State m_state = State::Idle;
};
