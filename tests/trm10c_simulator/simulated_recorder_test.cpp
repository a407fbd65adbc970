#include "acquisition/trm10c.h"
#include "tools/trm10c_simulator/simulated_recorder.h"

#include <gtest/gtest.h>

using Seconds = AutoclaveCycle::Seconds;

TEST(SimulatedRecorder, AnswersOnlyWhatIsExact)
{
    const QByteArrayList exact{"\033O 01\r\n", "\033T\r\n", "TS0\r\n", "FM0,01,06\r\n"};
    SimulatedRecorder recorder({});
    const std::vector<std::pair<qsizetype, QByteArray>> mistakes{
        {0, "O 01\r\n"}, {1, "T\r\n"},         {1, "\033t\r\n"}, {2, "\033TS0\r\n"},
        {2, "TS0\n"},    {3, "FM0,01,05\r\n"}, {3, "\r\n"}};
    for (const auto &[at, wrong] : mistakes) {
        QByteArrayList commands = exact;
        commands[at] = wrong;
        EXPECT_TRUE(recorder.receive(commands.join(), Seconds(0)).answer.isEmpty());
        const auto answer = recorder.receive(exact.join(), Seconds(0)).answer;
        ASSERT_EQ(answer.size(), 1) << "a new dialogue may begin at any time";
        EXPECT_EQ(answer[0].bytes.size(), trm10c::kReplySize);
    }
}
