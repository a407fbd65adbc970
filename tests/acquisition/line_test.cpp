// The exchange on the system's serial line, against the simulated recorder at its other end. Bytes
// take their real way; the reply's limit and the recorder's delays pass by the test clock.
#include "platform/system_serial_line.h"
#include "tests/acquisition/acquisition_rig.h"
#include "tests/support/joined_line.h"
#include "tools/trm10c_simulator/recorder_simulation.h"

#include <QtTest/QTest>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace
{

termios settingsOf(int port)
{
    termios settings{};
    EXPECT_EQ(::tcgetattr(port, &settings), 0);
    return settings;
}

speed_t drainedAt = B0;

} // namespace

/// Stands in for the system's own, which leaves no trace on a pseudo-terminal.
extern "C" int tcdrain(int port)
{
    const termios settings = settingsOf(port);
    drainedAt = ::cfgetospeed(&settings);
    return ::ioctl(port, TCSBRK, 1);
}
#endif

namespace
{

const QStringList kMessage{
    QStringLiteral("Eroare de comunicare ! Verificati setarile aparatului si conexiunile.")};

class Line : public ::testing::Test
{
public:
    void plug(Fault fault)
    {
        heard.clear();
        op.told.clear();
        recorder.reset();
        joined = {};
        joined = joinLine();
        recorder = std::make_unique<RecorderSimulation>(
            RecorderSettings{.fault = fault, .faultAt = 1}, *joined.recorderEnd, time, time);
        QObject::connect(recorder.get(), &RecorderSimulation::reported,
                         [this](const QString &entry) { heard += entry; });
        line = makeSerialLine(LineSettings{.port = joined.stationPort}, nullptr);
        exchange = std::make_unique<Exchange>(station, *line, time, op);
        QObject::connect(exchange.get(), &Exchange::finished, [this](bool f) { failed = f; });
    }
    /// Begins the n-th exchange; the recorder has heard it and answers as soon as time passes.
    void begin(int n)
    {
        failed.reset();
        station.sensors[0].value = 0;
        exchange->interogare_aparat(QStringLiteral("6"));
        const QString request = QStringLiteral("exchange %1: received FM0,01,06 CR LF").arg(n);
        EXPECT_TRUE(reached([&] { return heard.contains(request); }));
    }
    void expectReading()
    {
        EXPECT_FALSE(failed.has_value()) << "took the answer to an exchange before";
        time.advance(milliseconds(0));
        EXPECT_TRUE(reached([&] { return failed.has_value(); }));
        EXPECT_EQ(failed, false);
        EXPECT_NEAR(station.sensors[0].value, 24, 2);
        EXPECT_FALSE(line->isOpen());
    }
    /// The event loop runs until it is true; the limit only keeps a failing test from hanging.
    static bool reached(const std::function<bool()> &condition)
    {
        return QTest::qWaitFor(condition, 20'000);
    }

    TestTime time;
    Station station = sampleStation();
    FakeOperator op;
    JoinedLine joined;
    std::unique_ptr<RecorderSimulation> recorder;
    std::unique_ptr<SerialLine> line;
    std::unique_ptr<Exchange> exchange;
    QStringList heard;
    std::optional<bool> failed;
};

} // namespace

TEST_F(Line, AWrongRecorderFailsOnceAndNeverSpoilsTheNextExchange)
{
    struct Row {
        Fault fault;
        qint64 arrives; // bytes, before the limit
        bool fails;
    };
    for (const Row &row :
         {Row{Fault::Silent, 0, true}, Row{Fault::Short, 185, true}, Row{Fault::Long, 187, true},
          Row{Fault::Late, 0, true}, Row{Fault::Slow, 31, false}, Row{Fault::Garbled, 0, false}}) {
        plug(row.fault);
        // What a cable brings late comes when it comes, perhaps as the next exchange's reply.
        if (row.fault == Fault::Late && !joined.isImmediate)
            continue;
        begin(1);
        time.advance(milliseconds(0));
        ASSERT_TRUE(reached([&] { return line->bytesAvailable() == row.arrives; }));
        time.advance(milliseconds(1999));
        ASSERT_TRUE(row.fails || reached([&] { return failed.has_value(); }));
        EXPECT_EQ(failed.has_value(), !row.fails);
        time.advance(milliseconds(501));
        EXPECT_EQ(failed, row.fails);
        EXPECT_EQ(op.told, row.fails ? kMessage : QStringList());
        for (int n = 2; n < 4; ++n) {
            begin(n);
            expectReading();
        }
        ASSERT_TRUE(reached([&] { return heard.last().endsWith("received ESC C 01 CR LF"); }));
        EXPECT_EQ(heard.filter("ESC C 01").size(), row.fails ? 2 : 3) << "after complete replies";
    }
}

#ifndef Q_OS_WIN
TEST_F(Line, IsDrainedBeforeItsOldSettingsComeBackAndDoesNotHangUp)
{
    plug(Fault::None);
    const int port = ::open(joined.stationPort.toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
    termios before = settingsOf(port);
    before.c_cflag |= HUPCL;
    ::cfsetspeed(&before, B38400);
    ASSERT_EQ(::tcsetattr(port, TCSANOW, &before), 0);
    line->open();
    line->write(trm10c::closeCommand());
    line->close();
    EXPECT_EQ(drainedAt, B9600);
    const termios after = settingsOf(port);
    EXPECT_EQ(::cfgetospeed(&after), B38400);
    EXPECT_FALSE(after.c_cflag & HUPCL);
    ::close(port);
}
#endif

TEST_F(Line, ThatVanishes)
{
    plug(Fault::Vanish);
    if (!joined.isImmediate)
        GTEST_SKIP() << "the station's port stays when the recorder's is closed";
    begin(1);
    ASSERT_TRUE(reached([&] { return !line->isOpen(); }));
    time.advance(milliseconds(1999));
    EXPECT_FALSE(failed.has_value());
    time.advance(milliseconds(1));
    EXPECT_EQ(failed, true);
    EXPECT_EQ(op.told, kMessage);
    EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);
    EXPECT_THROW(exchange->interogare_aparat({}), RuntimeError);
}
