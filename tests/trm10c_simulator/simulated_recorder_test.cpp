#include "acquisition/trm10c.h"
#include "tools/trm10c_simulator/simulated_recorder.h"

#include <algorithm>
#include <gtest/gtest.h>

using Seconds = AutoclaveCycle::Seconds;

static SimulatedRecorder::Reaction hear(SimulatedRecorder &recorder, const QByteArrayList &commands)
{
    SimulatedRecorder::Reaction all;
    for (const QByteArray &command : commands) {
        const auto reaction = recorder.receive(command, Seconds(0));
        all.report += reaction.report;
        all.answer += reaction.answer;
    }
    return all;
}

TEST(AutoclaveCycle, SterilisesAndRepeats)
{
    for (const double plateau : {121.0, 134.0}) {
        AutoclaveCycle cycle(plateau, 7);
        AutoclaveCycle again(plateau, 7);
        for (Seconds at = cycle.plateauBegin() + Seconds(60); at < cycle.plateauEnd();
             at += Seconds(10)) {
            const auto readings = cycle.read(at);
            const auto [least, most] = std::minmax_element(readings.begin(), readings.end());
            EXPECT_GT(*least, plateau - 1.5);
            EXPECT_LT(*most, plateau + 2);
            EXPECT_NE(readings[0], readings[3]);
            EXPECT_EQ(again.read(at), readings) << "the same seed, the same readings";
        }
        EXPECT_LT(cycle.read(cycle.duration() - Seconds(1))[0], 30);
        EXPECT_NEAR(cycle.read(5 * cycle.duration())[0], cycle.read(Seconds(0))[0], 1.5);
    }
}

TEST(SimulatedRecorder, AnswersOnlyWhatIsExact)
{
    const QByteArrayList exact{"\033O 01\r\n", "\033T\r\n", "TS0\r\n", "FM0,01,06\r\n"};
    SimulatedRecorder recorder({});
    for (int exchange = 1; exchange <= 2; ++exchange) {
        const auto reaction = hear(recorder, exact + QByteArrayList{"\033C 01\r\n"});
        ASSERT_EQ(reaction.answer.size(), 1);
        ASSERT_EQ(reaction.answer[0].bytes.size(), trm10c::kReplySize);
        for (const double value : trm10c::channelValues(reaction.answer[0].bytes))
            EXPECT_NEAR(value, 24, 3);
        EXPECT_TRUE(reaction.report.join(' ').contains("received ESC C 01 CR LF"));
    }
    const std::vector<std::pair<qsizetype, QByteArray>> mistakes{
        {0, "O 01\r\n"}, {1, "T\r\n"},         {1, "\033t\r\n"},   {2, "\033TS0\r\n"},
        {2, "TS0\n"},    {3, "FM0,01,05\r\n"}, {3, "FM0,01,06\r"}, {3, QByteArray(100, 'x')}};
    for (const auto &[at, wrong] : mistakes) {
        QByteArrayList commands = exact;
        commands[at] = wrong;
        EXPECT_TRUE(hear(recorder, commands).answer.isEmpty()) << wrong.constData();
    }
    EXPECT_EQ(hear(recorder, {"\n"}).answer.size(), 0);
    EXPECT_EQ(hear(recorder, exact).answer.size(), 1) << "a new dialogue may begin at any time";
}
