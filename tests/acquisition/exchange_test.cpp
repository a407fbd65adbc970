#include "tests/acquisition/acquisition_rig.h"

#include <optional>

namespace
{

const QByteArrayList kReadCommands{"\033O 01\r\n", "\033T\r\n", "TS0\r\n", "FM0,01,06\r\n"};
const QByteArray kCloseCommand = "\033C 01\r\n";
const QString kMessage =
    QStringLiteral("Eroare de comunicare ! Verificati setarile aparatului si conexiunile.");

class InterogareAparat : public AcquisitionRig
{
public:
    InterogareAparat()
    {
        cycle.reset();
        QObject::connect(exchange.get(), &Exchange::finished, [this](bool f) { failed = f; });
    }
    void begin()
    {
        failed.reset();
        line.written.clear();
        exchange->interogare_aparat(QStringLiteral("6"));
    }
    void expectGivenUp(const char *what)
    {
        EXPECT_EQ(failed, true) << what;
        EXPECT_EQ(op.told, QStringList(kMessage)) << what;
        EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);
        EXPECT_EQ(line.written, kReadCommands) << what;
        EXPECT_FALSE(line.isOpen()) << what;
        EXPECT_EQ(station.sensors[0].value, 0) << what;
    }

    std::optional<bool> failed;
};

} // namespace

TEST_F(InterogareAparat, WholeDialogueIsByteExact)
{
    begin();
    EXPECT_EQ(line.written, kReadCommands);
    EXPECT_TRUE(time.isActive("TimerEroare"));
    for (const char byte : reply) { // in the smallest pieces there are
        EXPECT_FALSE(failed.has_value());
        line.arrive(QByteArray(1, byte));
    }
    EXPECT_EQ(failed, false);
    EXPECT_EQ(line.written, kReadCommands + QByteArrayList{kCloseCommand});
    EXPECT_FALSE(line.isOpen());
    EXPECT_EQ(station.sensors[0].value, 20.5);
    EXPECT_EQ(station.sensors[5].value, 25);
    time.advance(milliseconds(5000));
    EXPECT_TRUE(op.told.isEmpty());
    EXPECT_FALSE(station.TimeoutComunicare);
}

TEST_F(InterogareAparat, FieldsAreLeadingNumbers)
{
    const QByteArray frame = replyWith({"12.3x", "", "1 2.5", "-1.5E2", "+7,5", "\t.5\n"});
    const trm10c::Values expected{12.3, 0, 12.5, -150, 7, 0.5};
    EXPECT_EQ(trm10c::channelValues(frame), expected);
}

TEST_F(InterogareAparat, AnythingButTheWholeReplyEndsByTimeout)
{
    const QList<QByteArrayList> arrivals{
        {},                                   // silent
        {reply.first(185)},                   // short
        {reply + "x"},                        // one byte too many, at once
        {reply.first(100), reply.first(100)}, // past the size without ever meeting it
    };
    for (const QByteArrayList &pieces : arrivals) {
        op.told.clear();
        begin();
        for (const QByteArray &piece : pieces)
            line.arrive(piece);
        time.advance(milliseconds(1999));
        EXPECT_FALSE(failed.has_value());
        time.advance(milliseconds(1));
        expectGivenUp(pieces.join().constData());
    }
}

TEST_F(InterogareAparat, WhatComesBehindTheReplyIsDrainedFirst)
{
    begin();
    line.behindReply = "late";
    line.arrive(reply);
    EXPECT_EQ(line.written, kReadCommands);
    time.advance(milliseconds(0));
    EXPECT_EQ(failed, false);
    EXPECT_EQ(line.written.last(), kCloseCommand);
}

TEST_F(InterogareAparat, StopWhileWaitingLeavesTheReplyAndTheNextExchangeThrowsItAway)
{
    begin();
    station.monitorActive = false;
    line.arrive(reply);
    EXPECT_EQ(failed, true);
    EXPECT_TRUE(line.isOpen());
    EXPECT_EQ(line.waiting.size(), 186);
    EXPECT_EQ(line.written, kReadCommands);

    station.monitorActive = true;
    begin();
    EXPECT_EQ(line.openings, 1);
    line.arrive(reply);
    EXPECT_EQ(failed, false);
    EXPECT_TRUE(op.told.isEmpty());

    begin();
    station.monitorActive = false;
    time.advance(milliseconds(2000));
    EXPECT_EQ(op.told, QStringList(kMessage));
}

TEST_F(InterogareAparat, VanishingLine)
{
    begin();
    line.vanish();
    time.advance(milliseconds(1999));
    EXPECT_FALSE(failed.has_value());
    time.advance(milliseconds(1));
    expectGivenUp("vanished while waiting");

    line.missing = false;
    begin();
    line.behindReply = "late";
    line.arrive(reply);
    line.vanish();
    time.advance(milliseconds(0));
    EXPECT_EQ(failed, false) << "the whole reply had come";
    EXPECT_EQ(station.sensors[5].value, 25);
}

TEST_F(InterogareAparat, ReplyBehindABlockedEventLoopCounts)
{
    begin();
    auto notifier = time.createTimer(QStringLiteral("line"), [this] { line.arrive(reply); });
    notifier->start(milliseconds(2000)); // comes in the same round as the limit's tick
    time.advance(milliseconds(2000));
    EXPECT_EQ(failed, false);
    EXPECT_TRUE(op.told.isEmpty());
}

TEST_F(InterogareAparat, FailuresThatAreNotTheRecordersTravelUp)
{
    line.missing = true;
    EXPECT_THROW(begin(), RuntimeError);
    EXPECT_FALSE(exchange->isRunning());
    line.missing = false;
    begin();
    EXPECT_THROW(line.arrive(replyWith({"9e99999999", "1", "1", "1", "1", "1"})), RuntimeError);
    EXPECT_EQ(failed, true);
    EXPECT_FALSE(line.isOpen());
}

TEST_F(InterogareAparat, MayBeDestroyedBehindItsMessageBox)
{
    begin();
    op.meanwhile = [this] { exchange.reset(); };
    time.advance(milliseconds(2000));
    EXPECT_EQ(op.told.size(), 1);
    EXPECT_FALSE(failed.has_value());
}
