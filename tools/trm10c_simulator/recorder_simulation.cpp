#include "tools/trm10c_simulator/recorder_simulation.h"
#include "platform/scheduler.h"

#include <QFile>
#include <QFileInfo>
#include <stdexcept>

RecorderSimulation::RecorderSimulation(const RecorderSettings &settings, const Clock &clock,
                                       Scheduler &scheduler, const QString &link, QObject *parent)
    : QObject(parent), m_clock(clock), m_start(clock.now()), m_recorder(settings),
      m_readable(
          std::make_unique<QSocketNotifier>(m_terminal->descriptor(), QSocketNotifier::Read)),
      m_pieceTimer(
          scheduler.createTimer(QStringLiteral("RecorderAnswer"), [this] { sendNextPiece(); }))
{
    connect(m_readable.get(), &QSocketNotifier::activated, this, &RecorderSimulation::onReadable);
    if (!link.isEmpty())
        makeLink(link);
}

RecorderSimulation::~RecorderSimulation()
{
    if (!m_link.isEmpty())
        QFile::remove(m_link);
}

void RecorderSimulation::makeLink(const QString &link)
{
    if (QFileInfo(link).isSymLink())
        QFile::remove(link);
    QFile port(m_terminal->portName());
    if (!port.link(link))
        throw std::runtime_error(QStringLiteral("cannot make the link %1: %2")
                                     .arg(link, port.errorString())
                                     .toStdString());
    m_link = link;
}

QString RecorderSimulation::portName() const
{
    if (!m_link.isEmpty())
        return QFileInfo(m_link).absoluteFilePath();
    return m_terminal ? m_terminal->portName() : QString();
}

void RecorderSimulation::onReadable()
{
    const AutoclaveCycle::Seconds sinceStart(double(m_start.msecsTo(m_clock.now())) / 1000);
    const auto reaction = m_recorder.receive(m_terminal->read(), sinceStart);
    for (const QString &line : reaction.report)
        emit reported(line);
    if (reaction.vanish) {
        vanish();
        return;
    }
    const bool idle = m_pieces.isEmpty();
    m_pieces += reaction.answer;
    if (idle)
        startNextPiece();
}

void RecorderSimulation::startNextPiece()
{
    if (!m_pieces.isEmpty())
        m_pieceTimer->start(m_pieces.first().after);
}

void RecorderSimulation::sendNextPiece()
{
    m_terminal->write(m_pieces.takeFirst().bytes);
    startNextPiece();
}

void RecorderSimulation::vanish()
{
    m_pieceTimer->stop();
    m_pieces.clear();
    m_readable->setEnabled(false);
    m_terminal.reset();
    emit vanished();
}
