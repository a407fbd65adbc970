#pragma once

#include "tools/trm10c_simulator/autoclave_cycle.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

/// Faults of the recorder.
enum class Fault {
    None,
    Silent,  ///< no answer
    Short,   ///< the last byte is missing
    Long,    ///< one byte too many
    Garbled, ///< rubbish where the values stand
    Slow,    ///< in pieces, but in time
    Late,    ///< after the station has given up
    Vanish,  ///< the line is gone
};

struct RecorderSettings {
    double plateau = 121; ///< degrees Celsius
    double speed = 1;     ///< seconds of the sterilisation per second
    unsigned seed = 1;
    Fault fault = Fault::None;
    unsigned faultAt = 0; ///< the exchange, from 1, that fails; 0: every one
};

/// The recorder's side of the dialogue, on bytes. Commands must arrive in order and byte for byte;
/// anything else is reported and not answered.
class SimulatedRecorder
{
public:
    struct Piece {
        QByteArray bytes;
        std::chrono::milliseconds after; ///< since the piece before
    };
    struct Reaction {
        QStringList report; ///< one line for each event
        QList<Piece> answer;
        bool vanish = false;
    };

    explicit SimulatedRecorder(const RecorderSettings &settings);

    Reaction receive(const QByteArray &bytes, AutoclaveCycle::Seconds sinceStart);

private:
    void receiveLine(const QByteArray &line, AutoclaveCycle::Seconds sinceStart,
                     Reaction &reaction);
    void answer(AutoclaveCycle::Seconds sinceStart, Reaction &reaction);
    QByteArray frame(AutoclaveCycle::Seconds sinceStart);
    void garble(QByteArray &reply);

    RecorderSettings m_settings;
    AutoclaveCycle m_cycle;
    std::mt19937 m_random;
    QByteArray m_unfinishedLine;
    qsizetype m_turn = 0; ///< index of the next command
    unsigned m_exchange = 0;
};
