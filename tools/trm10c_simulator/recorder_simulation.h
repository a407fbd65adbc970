#pragma once

#include "platform/clock.h"
#include "tools/trm10c_simulator/simulated_recorder.h"

#include <QObject>
#include <memory>

class Scheduler;
class SerialLine;
class Timer;

/// A recorder at the end of an open line, driven by the event loop of the thread it lives in: a
/// program of its own, or part of the program that talks to it.
class RecorderSimulation : public QObject
{
    Q_OBJECT
public:
    /// Line, clock and scheduler must outlive this object.
    RecorderSimulation(const RecorderSettings &settings, SerialLine &line, const Clock &clock,
                       Scheduler &scheduler, QObject *parent = nullptr);
    ~RecorderSimulation() override;

signals:
    /// One line of text about what was received or done.
    void reported(const QString &text);
    /// The line is closed for good: by the recorder, or because its port has gone.
    void vanished();

private:
    void onReadable();
    void pollLine();
    void sendNextPiece();
    void startNextPiece();
    void vanish();

    SerialLine &m_line;
    const Clock &m_clock;
    const QDateTime m_start;
    SimulatedRecorder m_recorder;
    std::unique_ptr<Timer> m_poll;
    std::unique_ptr<Timer> m_pieceTimer;
    QList<SimulatedRecorder::Piece> m_pieces; ///< still to be sent
};
