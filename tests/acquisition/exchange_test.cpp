#include "tests/acquisition/acquisition_rig.h"

namespace
{

const QByteArrayList kReadCommands{"\033O 01\r\n", "\033T\r\n", "TS0\r\n", "FM0,01,06\r\n"};
const QByteArrayList kDialogue = kReadCommands + QByteArrayList{"\033C 01\r\n"};

class InterogareAparat : public AcquisitionRig
{
public:
    void begin()
    {
        QObject::connect(exchange.get(), &Exchange::finished, [this](bool f) { failed = f; });
        failed.reset();
        line.written.clear();
        exchange->interogare_aparat(QStringLiteral("6"));
    }
    std::optional<bool> failed;
};

} // namespace

TEST_F(InterogareAparat, WholeDialogueIsByteExact)
{
    begin();
    time.advance(milliseconds(2000));
    EXPECT_EQ(op.told.size(), 1);
    begin(); // what a silent recorder left behind spoils nothing
    reply = replyWith({"12.3x", "", "1 2.5", "-1.5E2", "+7,5", "\t.5\n"});
    for (const char byte : reply) { // in the smallest pieces there are
        EXPECT_EQ(line.written, kReadCommands);
        line.arrive(QByteArray(1, byte));
    }
    EXPECT_EQ(failed, false);
    EXPECT_EQ(line.written, kDialogue);
    EXPECT_FALSE(line.isOpen());
    for (std::size_t i = 0; const double value : {12.3, 0.0, 12.5, -150.0, 7.0, 0.5})
        EXPECT_EQ(station.sensors[i++].value, value);
    time.advance(milliseconds(5000));
    EXPECT_EQ(op.told.size(), 1);
}

TEST_F(InterogareAparat, WhatComesBehindTheReplyIsDrainedFirst)
{
    for (const bool vanishes : {false, true}) {
        begin();
        line.behindReply = "late";
        line.arrive(reply);
        EXPECT_EQ(line.written, kReadCommands);
        if (vanishes)
            line.close();
        time.advance(milliseconds(0));
        EXPECT_EQ(failed, false) << "the whole reply had come";
        EXPECT_EQ(line.written, vanishes ? kReadCommands : kDialogue);
    }
}

TEST_F(InterogareAparat, ReplyBehindABlockedEventLoopCounts)
{
    begin();
    auto notifier = time.createTimer("line", [this] { line.arrive(reply); });
    notifier->start(milliseconds(2000)); // comes in the same round as the limit's tick
    time.advance(milliseconds(2000));
    EXPECT_EQ(failed, false);
    EXPECT_TRUE(op.told.isEmpty());
}

TEST_F(InterogareAparat, StopWhileWaitingForASilentRecorderStillTells)
{
    begin();
    station.monitorActive = false;
    time.advance(milliseconds(2000));
    EXPECT_EQ(op.told.size(), 1);
    EXPECT_EQ(failed, true);
}
