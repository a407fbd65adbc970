#include "tests/jet/fuzz/damage.h"

#include <gtest/gtest.h>

#include <random>

namespace jet
{
namespace
{

const std::vector<Bytes> &shapes()
{
    static const std::vector<Bytes> made = makeShapes();
    return made;
}

std::string findingsIn(const Bytes &content)
{
    MemoryDisk disk = diskWith(content);
    return findings(
        Database::open(kDamagedFile, unsynced(), std::make_unique<MemoryFileSystem>(disk)));
}

TEST(Damage, EveryShapeIsSoundBeforeIt)
{
    for (const Bytes &shape : shapes())
        EXPECT_EQ(findingsIn(shape), "") << "shape " << &shape - shapes().data();
}

TEST(Damage, NeitherCrashesNorHangs)
{
    std::mt19937 random(20261121);
    for (unsigned run = 0; run < 400; ++run) {
        const std::size_t shape = run % shapes().size();
        Bytes input{static_cast<std::uint8_t>(shape)};
        for (unsigned i = 0; i <= run % 7; ++i) {
            // The heads of pages hold most of what others rely on.
            std::size_t offset = random() % shapes()[shape].size();
            if (random() % 2 == 0)
                offset = offset / kPageSize * kPageSize + random() % 64;
            appendLittleEndian<3>(input, offset);
            input.push_back(static_cast<std::uint8_t>(random() % 3 == 0 ? 0xFF : random()));
        }
        EXPECT_NO_THROW(exerciseDamaged(shapes(), input)) << "run " << run;
        input.front() = static_cast<std::uint8_t>(128 + shape);
        EXPECT_NO_THROW(exerciseDamaged(shapes(), input)) << "run " << run << " with a journal";
    }
}

/// Damage that once got through, as the fuzzer gave it out; the bytes it replaced tell whether it
/// still hits what it did.
TEST(Damage, RecordedDamageStaysHarmless)
{
    struct Recorded {
        const char *what;
        const char *input;
        const char *replaced;
    };
    for (const Recorded &damage :
         {Recorded{"prefix longer than an index leaf", "00 18 20 01 FF 19 20 01 FF", "00 00"},
          Recorded{"a memo that counts by itself", "02 7F 20 00 76", "12"}}) {
        const Bytes input = hex(damage.input);
        const Bytes &shape = shapes().at(input.front());
        Bytes replaced;
        for (std::size_t at = 1; at + 4 <= input.size(); at += 4)
            replaced.push_back(shape.at(readU24(input, at)));
        EXPECT_EQ(replaced, hex(damage.replaced)) << "record it anew: " << damage.what;
        EXPECT_NO_THROW(exerciseDamaged(shapes(), input)) << damage.what;
    }
}

TEST(Damage, CutFileIsReportedAndReadAsFarAsItGoes)
{
    Bytes content = shapes().front();
    content.resize(content.size() / 2 + 100);
    MemoryDisk disk = diskWith(content);
    exercise(disk);
    EXPECT_NE(findingsIn(content), "");
}

} // namespace
} // namespace jet
