#include "tests/jet/fuzz/damage.h"
#include "tests/jet/fuzz/shapes.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

namespace jet
{
namespace
{

std::vector<MemoryDisk> &shapes()
{
    static std::vector<MemoryDisk> made = makeShapes();
    return made;
}

TEST(Damage, EveryShapeIsSoundBeforeIt)
{
    for (MemoryDisk &shape : shapes())
        EXPECT_EQ(findings(openOn(shape, unsynced(true))), "") << &shape - shapes().data();
}

TEST(Damage, NeitherCrashesNorHangs)
{
    std::mt19937 random(20261121);
    for (unsigned run = 0; run < 800; ++run) {
        const std::size_t shape = run % shapes().size();
        Bytes input{static_cast<std::uint8_t>(shape)};
        for (unsigned i = 0; i <= run % 7; ++i) {
            // The heads of pages hold most of what others rely on.
            std::size_t offset =
                random() % (shapes()[shape][kFile].size() + shapes()[shape][kJournal].size());
            if (random() % 2 == 0)
                offset = offset / kPageSize * kPageSize + random() % 64;
            appendLittleEndian<3>(input, offset);
            input.push_back(static_cast<std::uint8_t>(random() % 3 == 0 ? 0xFF : random()));
        }
        EXPECT_NO_THROW(exerciseDamaged(shapes(), input)) << "run " << run;
    }
}

/// Damage that once got through, as the fuzzer gave it out; the bytes it replaced tell whether it
/// still hits what it did.
TEST(Damage, RecordedDamageStaysHarmless)
{
    const std::tuple<const char *, const char *, const char *> recorded[] = {
        {"prefix longer than an index leaf", "00 18 20 01 FF 19 20 01 FF", "00 00"},
        {"a memo that counts by itself", "02 7F 20 00 76", "12"},
    };
    for (const auto &[what, patches, before] : recorded) {
        const Bytes input = hex(patches);
        const Bytes &shape = shapes().at(input.front())[kFile];
        Bytes replaced;
        for (std::size_t at = 1; at + 4 <= input.size(); at += 4)
            replaced.push_back(shape.at(readU24(input, at)));
        EXPECT_EQ(replaced, hex(before)) << "record it anew: " << what;
        EXPECT_NO_THROW(exerciseDamaged(shapes(), input)) << what;
    }
}

TEST(Damage, CutFileIsReportedAndReadAsFarAsItGoes)
{
    MemoryDisk disk = shapes().front();
    disk[kFile].resize(disk[kFile].size() / 2 + 100);
    EXPECT_NE(findings(openOn(disk, unsynced(true))), "");
    exercise(disk);
}

} // namespace
} // namespace jet
