#include "jet/file/journal_file.h"

#include "tests/jet/memory_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

// A journal that a stopped program left, beside the file it belongs to and beside others.

namespace jet
{
namespace
{

class LeftOverJournal : public testing::Test
{
protected:
    LeftOverJournal()
    {
        interrupt(m_disk,
                  [](Database &database) { appendSamples(database.table(u"Tabel"), 21, 90); });
    }

    Database open(bool readOnly = false) { return openOn(m_disk, unsynced(readOnly)); }

    MemoryDisk m_disk = diskWithSamples(20);
    const Bytes m_before = m_disk[kFile];
};

TEST_F(LeftOverJournal, IsFinishedOrDroppedByWhatIsInTheFileAndOnlySeenByAReader)
{
    const Bytes torn = m_disk[kFile];
    const Bytes journal = m_disk[kJournal];
    const auto changed =
        std::mismatch(m_before.begin() + kPageSize, m_before.end(), torn.begin() + kPageSize)
            .first -
        m_before.begin();
    const auto with = [](Bytes bytes, std::ptrdiff_t offset, std::uint8_t value,
                         std::ptrdiff_t length = 1) {
        std::fill_n(bytes.begin() + offset, length, value);
        return bytes;
    };
    MemoryDisk another = diskWithSamples(20);
    appendSamples(openOn(another, unsynced()).table(u"Tabel"), 21, 70);
    MemoryDisk copy = m_disk;
    copy.names.erase(kJournal);
    copy[kFile] = m_before;
    openOn(copy).table(u"Tabel").appendRow(sampleRow(1000));
    const std::ptrdiff_t sector = changed - changed % 512;
    const std::tuple<const char *, Bytes, std::uint32_t> cases[] = {
        {"as it was left", torn, 90},
        {"nothing has reached the file", m_before, 20},
        {"a changed sector came out as zeros", with(torn, sector, 0, 512), 90},
        {"a part of a sector was written", with(torn, changed, m_before[std::size_t(changed)]), 90},
        {"page 0 came out as zeros", with(torn, 0, 0, 4096), 90},
        {"its counter only, and nothing else was written", with(m_before, 0xE00, 0, 512), 90},
        {"another program has opened the half", with(torn, 0xE00, 7), 90},
        {"another program has opened the whole", with(m_before, 0xE00, 7), 20},
        {"another file stands in its place", another[kFile], 70},
        {"a copy of before with one statement of its own", copy[kFile], 21},
    };
    for (const auto &[what, file, rows] : cases) {
        m_disk[kFile] = file;
        m_disk[kJournal] = journal;
        for (const bool readOnly : {true, false}) {
            const Database database = open(readOnly);
            EXPECT_EQ(idsOf(database.table(u"Tabel").records()).size(), rows) << what;
            EXPECT_EQ(findings(database), "") << what;
            EXPECT_TRUE(!readOnly || m_disk[kFile] == file) << "a reader changes nothing: " << what;
        }
        m_disk.names.erase(kJournal); // of no use any more
        EXPECT_EQ(open().table(u"Tabel").recordCount(), rows) << what;
    }
}

TEST_F(LeftOverJournal, IsKeptWhenItFitsTheFileNeitherWay)
{
    Bytes &longer = m_disk[kFile]; // by another program, on half of a statement
    longer.resize(longer.size() + 64 * kPageSize);
    std::fill_n(longer.begin() + kPageSize, kPageSize, std::uint8_t{0});
    const Bytes journal = m_disk[kJournal];
    EXPECT_EQ(errorOf([&] { open(true); }), ErrorCode::Damaged);
    EXPECT_EQ(m_disk[kJournal], journal) << "a reader changes nothing";
    const std::string kept = kJournal + ".kept";
    try {
        open();
        FAIL() << "a damaged file was opened";
    } catch (const Error &error) {
        EXPECT_EQ(error.code(), ErrorCode::Damaged);
        EXPECT_NE(std::string(error.what()).find(kept), std::string::npos) << error.what();
    }
    EXPECT_EQ(m_disk[kept], journal);
    EXPECT_FALSE(errorOf([&] { open(); })) << "what is left can be looked at";
}

TEST_F(LeftOverJournal, ThatAnotherOpenerHasKeptMeanwhileIsNotCleared)
{
    const auto files = filesOf(m_disk);
    JournalFile journal(*files, kFile, unsynced());
    EXPECT_TRUE(journal.hasStatement());
    JournalFile(*files, kFile, unsynced()).keepAside();
    EXPECT_FALSE(journal.read());
    journal.clear();
    EXPECT_TRUE(m_disk.has(kJournal + ".kept"));
}

TEST_F(LeftOverJournal, AnotherFileOfItsNameIsKept)
{
    open();
    for (const char *kept : {".kept", ".kept2"}) {
        m_disk[kJournal] = m_before;
        EXPECT_EQ(open(true).table(u"Tabel").recordCount(), open().table(u"Tabel").recordCount());
        EXPECT_EQ(m_disk[kJournal], m_before) << "reading changes nothing";
        open().table(u"Tabel").deleteAll();
        EXPECT_EQ(m_disk[kJournal + kept], m_before);
    }
}

TEST_F(LeftOverJournal, OfAnEarlierVersionIsFinished)
{
    Bytes &journal = m_disk[kJournal];
    journal.erase(journal.begin(), journal.begin() + kStatementOffset);
    std::ranges::copy(kOldStatementMark, journal.begin());
    hashJournal(journal, 0);
    EXPECT_EQ(idsOf(open(true).table(u"Tabel").byIndex(u"IndexPrimar")).size(), 90U);
    EXPECT_EQ(findings(open()), "");
    open().table(u"Tabel").appendRow(sampleRow(91));
    EXPECT_EQ(open().table(u"Tabel").recordCount(), 91U);
}

} // namespace
} // namespace jet
