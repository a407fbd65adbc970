#include "tools/trm10c_simulator/recorder_simulation.h"
#include "platform/scheduler.h"
#include "platform/serial_line.h"

static constexpr std::chrono::milliseconds kPollInterval{1000};

RecorderSimulation::RecorderSimulation(const RecorderSettings &settings, SerialLine &line,
                                       const Clock &clock, Scheduler &scheduler, QObject *parent)
    : QObject(parent), m_line(line), m_clock(clock), m_start(clock.now()), m_recorder(settings),
      m_poll(scheduler.createTimer(QStringLiteral("RecorderPoll"), [this] { pollLine(); })),
      m_pieceTimer(
          scheduler.createTimer(QStringLiteral("RecorderAnswer"), [this] { sendNextPiece(); }))
{
    connect(&m_line, &SerialLine::readyRead, this, &RecorderSimulation::onReadable);
    m_poll->start(kPollInterval);
}

RecorderSimulation::~RecorderSimulation() = default;

void RecorderSimulation::onReadable()
{
    const AutoclaveCycle::Seconds sinceStart(double(m_start.msecsTo(m_clock.now())) / 1000);
    const auto reaction = m_recorder.receive(m_line.readAll(), sinceStart);
    for (const QString &text : reaction.report)
        emit reported(text);
    if (reaction.vanish) {
        vanish();
        return;
    }
    const bool idle = m_pieces.isEmpty();
    m_pieces += reaction.answer;
    if (idle)
        startNextPiece();
}

void RecorderSimulation::pollLine()
{
    // A port whose adapter has been pulled closes the line and says nothing.
    if (m_line.isOpen())
        m_poll->start(kPollInterval);
    else
        vanish();
}

void RecorderSimulation::startNextPiece()
{
    if (!m_pieces.isEmpty())
        m_pieceTimer->start(m_pieces.first().after);
}

void RecorderSimulation::sendNextPiece()
{
    if (!m_line.isOpen()) {
        vanish();
        return;
    }
    m_line.write(m_pieces.takeFirst().bytes);
    startNextPiece();
}

void RecorderSimulation::vanish()
{
    m_poll->stop();
    m_pieceTimer->stop();
    m_pieces.clear();
    m_line.close();
    emit vanished();
}
