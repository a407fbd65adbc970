#include "tests/jet/fuzz/damage.h"

#include <gtest/gtest.h>

#include <random>

namespace jet
{
namespace
{

TEST(Damage, NeitherCrashesNorHangs)
{
    const MemoryDisk sound = damageableDisk();
    const std::size_t size = sound.files.at(kDamagedFile).content.size();
    std::mt19937 random(20261121);
    for (int run = 0; run < 400; ++run) {
        Bytes patches;
        for (int i = 0; i <= run % 6; ++i) {
            // The heads of pages hold most of what others rely on.
            std::size_t offset = random() % size;
            if (random() % 2 == 0)
                offset = offset / kPageSize * kPageSize + random() % 64;
            appendLittleEndian<3>(patches, offset);
            patches.push_back(static_cast<std::uint8_t>(random() % 3 == 0 ? 0xFF : random()));
        }
        MemoryDisk disk = sound;
        damage(disk, patches);
        EXPECT_NO_THROW(exercise(disk)) << "run " << run;
    }
}

TEST(Damage, ChangedByteOfAnIndexIsFoundWithItsPage)
{
    MemoryDisk disk = damageableDisk();
    Bytes &content = disk.files[kDamagedFile].content;
    PageNo leaf = 16;
    while (content[leaf * kPageSize] != 4) // the first leaf behind the system's pages
        ++leaf;
    content[leaf * kPageSize + 481] ^= 1;
    const Database database =
        Database::open(kDamagedFile, unsynced(), std::make_unique<MemoryFileSystem>(disk));
    EXPECT_NE(findings(database), "");
}

TEST(Damage, CutFileIsReportedAndReadAsFarAsItGoes)
{
    MemoryDisk disk = damageableDisk();
    Bytes &content = disk.files[kDamagedFile].content;
    content.resize(content.size() / 2 + 100);
    exercise(disk);
    EXPECT_NE(findings(Database::open(kDamagedFile, unsynced(),
                                      std::make_unique<MemoryFileSystem>(disk))),
              "");
}

} // namespace
} // namespace jet
