#include "tools/trm10c_simulator/simulated_recorder.h"

#include <QByteArrayList>

using std::chrono::milliseconds;

namespace
{

// In the order expected. Written out here instead of taken from the station, so that each side
// checks the other's reading of the protocol.
const QByteArrayList &commands()
{
    static const QByteArrayList kCommands{"\033O 01\r\n", "\033T\r\n", "TS0\r\n", "FM0,01,06\r\n",
                                          "\033C 01\r\n"};
    return kCommands;
}
constexpr qsizetype kRequest = 3; ///< index of the command that is answered

constexpr qsizetype kLongestLine = 64;
constexpr qsizetype kHeaderSize = 22;
constexpr qsizetype kSlotSize = 27;
constexpr int kFieldSize = 10;
constexpr qsizetype kPieceSize = 31;
constexpr milliseconds kPieceTime{100};
constexpr milliseconds kLateTime{2500};

QString readable(const QByteArray &line)
{
    QStringList words;
    QString text;
    for (const char c : line) {
        if (c >= ' ' && c <= '~') {
            text += QLatin1Char(c);
            continue;
        }
        if (!text.isEmpty())
            words += text;
        text.clear();
        words += c == '\033' ? QStringLiteral("ESC")
                 : c == '\r' ? QStringLiteral("CR")
                 : c == '\n' ? QStringLiteral("LF")
                             : QStringLiteral("<%1>").arg(quint8(c), 2, 16, QLatin1Char('0'));
    }
    if (!text.isEmpty())
        words += text;
    return words.join(QLatin1Char(' '));
}

} // namespace

SimulatedRecorder::SimulatedRecorder(const RecorderSettings &settings)
    : m_settings(settings), m_cycle(settings.plateau, settings.seed), m_random(settings.seed)
{
}

SimulatedRecorder::Reaction SimulatedRecorder::receive(const QByteArray &bytes,
                                                       AutoclaveCycle::Seconds sinceStart)
{
    Reaction reaction;
    for (const char byte : bytes) {
        m_unfinishedLine += byte;
        if (byte == '\n' || m_unfinishedLine.size() >= kLongestLine) {
            receiveLine(m_unfinishedLine, sinceStart, reaction);
            m_unfinishedLine.clear();
        }
    }
    return reaction;
}

void SimulatedRecorder::receiveLine(const QByteArray &line, AutoclaveCycle::Seconds sinceStart,
                                    Reaction &reaction)
{
    if (line == commands().first()) { // a new dialogue may begin at any time
        if (m_turn > kRequest)
            reaction.report += QStringLiteral("exchange %1: was not closed").arg(m_exchange);
        m_turn = 0;
        ++m_exchange;
    }
    const QString prefix = QStringLiteral("exchange %1: ").arg(m_exchange);
    if (line != commands().at(m_turn)) {
        reaction.report += prefix + QStringLiteral("UNEXPECTED %1, expected %2")
                                        .arg(readable(line), readable(commands().at(m_turn)));
        m_turn = 0;
        return;
    }
    reaction.report += prefix + QStringLiteral("received ") + readable(line);
    if (m_turn == kRequest)
        answer(sinceStart, reaction);
    m_turn = (m_turn + 1) % commands().size();
}

void SimulatedRecorder::answer(AutoclaveCycle::Seconds sinceStart, Reaction &reaction)
{
    const bool goesWrong = m_settings.faultAt == 0 || m_settings.faultAt == m_exchange;
    const Fault fault = goesWrong ? m_settings.fault : Fault::None;
    QByteArray reply = frame(sinceStart);
    milliseconds after{0};
    switch (fault) {
    case Fault::None:
    case Fault::Slow:
        break;
    case Fault::Silent:
        reaction.report += QStringLiteral("exchange %1: silent").arg(m_exchange);
        return;
    case Fault::Vanish:
        reaction.report += QStringLiteral("exchange %1: vanishes").arg(m_exchange);
        reaction.vanish = true;
        return;
    case Fault::Short:
        reply.chop(1);
        break;
    case Fault::Long:
        reply += '#';
        break;
    case Fault::Garbled:
        garble(reply);
        break;
    case Fault::Late:
        after = kLateTime;
        break;
    }
    const qsizetype pieceSize = fault == Fault::Slow ? kPieceSize : reply.size();
    for (qsizetype at = 0; at < reply.size(); at += pieceSize)
        reaction.answer += Piece{reply.mid(at, pieceSize), at == 0 ? after : kPieceTime};
    reaction.report += QStringLiteral("exchange %1: answers %2 bytes in %3 piece(s) after %4 ms")
                           .arg(m_exchange)
                           .arg(reply.size())
                           .arg(reaction.answer.size())
                           .arg(after.count());
}

QByteArray SimulatedRecorder::frame(AutoclaveCycle::Seconds sinceStart)
{
    QByteArray reply = QByteArray("TRM-10C").leftJustified(kHeaderSize, ' ');
    int channel = 0;
    for (const double temperature : m_cycle.read(sinceStart * m_settings.speed)) {
        const QByteArray name = QByteArray("  CH0") + QByteArray::number(++channel);
        reply += name.leftJustified(kSlotSize - kFieldSize, ' ');
        reply += QByteArray::number(temperature, 'f', 1).rightJustified(kFieldSize, ' ');
    }
    return reply + "\r\n";
}

void SimulatedRecorder::garble(QByteArray &reply)
{
    static constexpr char kRubbish[] = "0123456789.-+?#x ";
    std::uniform_int_distribution<std::size_t> pick(0, sizeof kRubbish - 2);
    for (qsizetype at = kHeaderSize; at < reply.size() - 2; ++at)
        reply[at] = kRubbish[pick(m_random)];
}
