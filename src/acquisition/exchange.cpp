#include "acquisition/exchange.h"
#include "acquisition/texts.h"
#include "app/settings/station.h"
#include "platform/operator.h"
#include "platform/runtime_error.h"
#include "platform/scheduler.h"
#include "platform/serial_line.h"

using std::chrono::milliseconds;

static constexpr milliseconds kReplyLimit{2000};
static constexpr milliseconds kAfterPendingEvents{0};

Exchange::Exchange(Station &station, SerialLine &line, Scheduler &scheduler, Operator &op,
                   QObject *parent)
    : QObject(parent), m_station(station), m_line(line), m_operator(op),
      m_timerEroare(scheduler.createTimer(QStringLiteral("TimerEroare"), [this] { onTimeout(); })),
      m_recheck(scheduler.createTimer(QStringLiteral("ReplyRecheck"), [this] { recheck(); }))
{
    connect(&line, &SerialLine::readyRead, this, &Exchange::onReadyRead);
}

Exchange::~Exchange() = default;

void Exchange::interogare_aparat(const QString &)
{
    if (m_state != State::Idle)
        return;
    m_station.TimeoutComunicare = false;
    if (!m_line.isOpen())
        m_line.open();
    // A late answer to an earlier exchange would make this one's reply too long.
    m_line.discardInput();
    for (const QByteArray &command : trm10c::readCommands())
        m_line.write(command);
    m_state = State::Waiting;
    m_timerEroare->start(kReplyLimit);
}

void Exchange::onReadyRead()
{
    if (m_state == State::Waiting)
        checkForReply();
}

void Exchange::onTimeout()
{
    m_station.TimeoutComunicare = true;
    // A long operation, such as an archive made by hand, may have blocked the event loop: a reply
    // that came in time is seen before the wait is given up.
    m_recheck->start(kAfterPendingEvents);
}

void Exchange::recheck()
{
    if (m_state == State::Waiting)
        checkForReply();
    else if (m_state == State::Draining)
        drain();
}

void Exchange::checkForReply()
{
    // More bytes than a reply has: the recorder sent something else.
    if (m_line.bytesAvailable() == trm10c::kReplySize)
        takeReply();
    else if (m_station.TimeoutComunicare)
        giveUp();
}

void Exchange::takeReply()
{
    m_timerEroare->stop();
    m_recheck->stop();
    m_station.TimeoutComunicare = false;
    if (!m_station.monitorActive) {
        finish(true);
        return;
    }
    try {
        storeValues(trm10c::channelValues(m_line.readAll()));
    } catch (...) {
        m_line.close();
        finish(true);
        throw;
    }
    m_state = State::Draining;
    drain();
}

void Exchange::drain()
{
    if (m_line.bytesAvailable() > 0) {
        // Nobody reads what follows the reply: left in the buffer it would keep the line draining.
        m_line.discardInput();
        m_recheck->start(kAfterPendingEvents);
        return;
    }
    if (m_line.isOpen()) // a line lost after the whole reply has nothing more to give
        m_line.write(trm10c::closeCommand());
    m_line.close();
    finish(false);
}

void Exchange::giveUp()
{
    m_timerEroare->stop();
    m_recheck->stop();
    m_state = State::Telling;
    m_line.close();
    m_operator.tell(texts::acquisition::communicationError(), Operator::Icon::Critical);
    finish(true);
}

void Exchange::abandon()
{
    m_timerEroare->stop();
    m_recheck->stop();
    m_state = State::Idle; // closing may still bring what has arrived
    m_line.close();
}

void Exchange::finish(bool failed)
{
    m_state = State::Idle;
    emit finished(failed);
}

void Exchange::storeValues(const trm10c::Values &values)
{
    if (m_station.sensors.size() < values.size())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    for (std::size_t i = 0; i < values.size(); ++i)
        m_station.sensors[i].value = values[i];
}
