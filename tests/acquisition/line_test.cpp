// The exchange on the real serial line, against the simulated recorder on a pseudo-terminal. Bytes
// take their real way; the reply's limit and the recorder's delays pass by the test clock.
#include "platform/qt_serial_line.h"
#include "tests/acquisition/acquisition_rig.h"
#include "tools/trm10c_simulator/recorder_simulation.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest/QTest>
#include <optional>

namespace
{

class Line : public ::testing::Test
{
public:
    void plug(Fault fault, unsigned faultAt)
    {
        recorder = std::make_unique<RecorderSimulation>(
            RecorderSettings{.fault = fault, .faultAt = faultAt}, time, time);
        QObject::connect(recorder.get(), &RecorderSimulation::reported,
                         [this](const QString &entry) { heard += entry; });
        LineSettings settings;
        settings.port = recorder->portName();
        line = std::make_unique<QtSerialLine>(settings);
        exchange = std::make_unique<Exchange>(station, *line, time, op);
        QObject::connect(exchange.get(), &Exchange::finished, [this](bool f) { failed = f; });
    }
    void begin()
    {
        failed.reset();
        station.sensors[0].value = 0;
        exchange->interogare_aparat(QStringLiteral("6"));
    }
    /// The event loop runs until it is true; the limit only keeps a failing test from hanging.
    static bool reached(const std::function<bool()> &condition)
    {
        return QTest::qWaitFor(condition, 20'000);
    }
    bool hears(const QString &entry)
    {
        return reached([&] { return heard.contains(entry); });
    }
    void expectReading()
    {
        ASSERT_TRUE(reached([&] { return failed.has_value(); }));
        EXPECT_EQ(failed, false);
        EXPECT_NEAR(station.sensors[0].value, 24, 2);
        EXPECT_FALSE(line->isOpen());
    }

    TestTime time;
    Station station = sampleStation();
    FakeOperator op;
    std::unique_ptr<RecorderSimulation> recorder;
    std::unique_ptr<QtSerialLine> line;
    std::unique_ptr<Exchange> exchange;
    QStringList heard;
    std::optional<bool> failed;
};

} // namespace

TEST_F(Line, ReadsAgainAndAgain)
{
    plug(Fault::None, 0);
    for (int n = 1; n <= 20; ++n) {
        begin();
        ASSERT_TRUE(hears(
            QStringLiteral("exchange %1: answers 186 bytes in 1 piece(s) after 0 ms").arg(n)));
        time.advance(milliseconds(0));
        expectReading();
        ASSERT_TRUE(hears(QStringLiteral("exchange %1: received ESC C 01 CR LF").arg(n)));
    }
    EXPECT_TRUE(heard.filter("UNEXPECTED").isEmpty());
}

TEST_F(Line, AWrongRecorderFailsOnceAndNeverSpoilsTheNextExchange)
{
    struct Row {
        Fault fault;
        qint64 arrives;
        milliseconds sentAfter;
    };
    for (const Row &row :
         {Row{Fault::Silent, 0, milliseconds(0)}, Row{Fault::Short, 185, milliseconds(0)},
          Row{Fault::Long, 187, milliseconds(0)}, Row{Fault::Late, 0, milliseconds(2500)}}) {
        heard.clear();
        op.told.clear();
        plug(row.fault, 1);
        begin();
        ASSERT_TRUE(hears(QStringLiteral("exchange 1: received FM0,01,06 CR LF")));
        time.advance(milliseconds(0));
        ASSERT_TRUE(reached([&] { return line->bytesAvailable() == row.arrives; }));
        time.advance(std::max(row.sentAfter, milliseconds(2000)));
        EXPECT_EQ(failed, true);
        EXPECT_EQ(op.told.size(), 1);
        EXPECT_FALSE(line->isOpen());
        EXPECT_EQ(station.sensors[0].value, 0);

        begin();
        ASSERT_TRUE(hears(QStringLiteral("exchange 2: received FM0,01,06 CR LF")));
        EXPECT_FALSE(failed.has_value()) << "took the late answer to the exchange before";
        time.advance(milliseconds(0));
        expectReading();
        EXPECT_TRUE(heard.filter("exchange 1: received ESC C").isEmpty());
        EXPECT_EQ(op.told.size(), 1);
    }
}

TEST_F(Line, SlowAndGarbledRepliesAreReplies)
{
    for (const Fault fault : {Fault::Slow, Fault::Garbled}) {
        heard.clear();
        plug(fault, 0);
        begin();
        ASSERT_TRUE(hears(QStringLiteral("exchange 1: received FM0,01,06 CR LF")));
        time.advance(milliseconds(1900));
        ASSERT_TRUE(reached([&] { return failed.has_value(); }));
        EXPECT_EQ(failed, false);
        EXPECT_TRUE(op.told.isEmpty());
    }
}

TEST_F(Line, StoppedWhileWaitingItIsFoundOpen)
{
    plug(Fault::None, 0);
    begin();
    station.monitorActive = false;
    ASSERT_TRUE(hears(QStringLiteral("exchange 1: received FM0,01,06 CR LF")));
    time.advance(milliseconds(0));
    ASSERT_TRUE(reached([&] { return failed.has_value(); }));
    EXPECT_EQ(failed, true);
    EXPECT_TRUE(line->isOpen());
    EXPECT_EQ(line->bytesAvailable(), 186);

    station.monitorActive = true;
    begin();
    ASSERT_TRUE(hears(QStringLiteral("exchange 2: received FM0,01,06 CR LF")));
    EXPECT_EQ(heard.count(QStringLiteral("exchange 1: was not closed")), 1);
    time.advance(milliseconds(0));
    expectReading();
}

TEST_F(Line, ThatVanishes)
{
    plug(Fault::Vanish, 1);
    begin();
    ASSERT_TRUE(reached([&] { return !line->isOpen(); }));
    time.advance(milliseconds(1999));
    EXPECT_FALSE(failed.has_value());
    time.advance(milliseconds(1));
    EXPECT_EQ(failed, true);
    EXPECT_EQ(op.told.size(), 1);
    EXPECT_THROW(begin(), RuntimeError);
}

TEST_F(Line, OpenFailuresHaveTheirNumbers)
{
    plug(Fault::None, 0);
    const QtSerialLine &first = *line;
    line->open();
    EXPECT_TRUE(first.isOpen());
    const QTemporaryDir folder;
    QFile file(folder.filePath("file"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const std::vector<std::pair<QString, int>> rows{
        {QStringLiteral("/dev/no-such-port"), RuntimeError::InvalidPortNumber},
        {recorder->portName(), RuntimeError::PortAlreadyOpen},
        {file.fileName(), RuntimeError::InvalidDevice}};
    for (const auto &[port, number] : rows) {
        LineSettings settings;
        settings.port = port;
        QtSerialLine other(settings);
        try {
            other.open();
            ADD_FAILURE() << port.toStdString();
        } catch (const RuntimeError &error) {
            EXPECT_EQ(error.number(), number) << port.toStdString();
        }
    }
}
