#pragma once

#include "platform/clock.h"
#include "tools/trm10c_simulator/pseudo_terminal.h"
#include "tools/trm10c_simulator/simulated_recorder.h"

#include <QObject>
#include <QSocketNotifier>
#include <memory>

class Scheduler;
class Timer;

/// A recorder on a pseudo-terminal of its own, driven by the event loop of the thread it lives in:
/// a program of its own, or part of the program that talks to it.
class RecorderSimulation : public QObject
{
    Q_OBJECT
public:
    /// The link, when a name is given, is made to point to the port; one that is left from an
    /// earlier run is replaced. Throws std::runtime_error (std::system_error among them) when the
    /// terminal or the link cannot be made. Clock and scheduler must outlive this object.
    RecorderSimulation(const RecorderSettings &settings, const Clock &clock, Scheduler &scheduler,
                       const QString &link = {}, QObject *parent = nullptr);
    ~RecorderSimulation() override;

    /// What the station opens: the link's name, or the port's when there is no link.
    QString portName() const;

signals:
    /// One line about what was received or done.
    void reported(const QString &line);
    /// The port is gone for good.
    void vanished();

private:
    void makeLink(const QString &link);
    void onReadable();
    void sendNextPiece();
    void startNextPiece();
    void vanish();

    const Clock &m_clock;
    const QDateTime m_start;
    SimulatedRecorder m_recorder;
    std::unique_ptr<PseudoTerminal> m_terminal = std::make_unique<PseudoTerminal>();
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<Timer> m_pieceTimer;
    QList<SimulatedRecorder::Piece> m_pieces; ///< still to be sent
    QString m_link;
};
