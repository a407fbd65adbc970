#include "jet/file/journal_file.h"

#include "tests/jet/interrupted_append.h"

#include <algorithm>

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
        makeTabel(m_path, 20);
        m_before = bytesOf(m_path);
        interruptAppend(m_path, 21, 90);
    }

    Database open(bool readOnly = false) const
    {
        OpenOptions options = unsynced();
        options.readOnly = readOnly;
        return Database::open(m_path, options);
    }

    TemporaryFolder m_folder;
    const std::filesystem::path m_path = m_folder / "autoclava1.mdb";
    const std::filesystem::path m_journal = journalPath(m_path);
    Bytes m_before;
};

TEST_F(LeftOverJournal, IsFinishedOnOpenAndOnlySeenByAReader)
{
    const auto size = std::filesystem::file_size(m_path);
    {
        const Database reader = open(true);
        EXPECT_EQ(reader.table(u"Tabel").recordCount(), 90U);
        EXPECT_EQ(findings(reader), "");
    }
    EXPECT_EQ(std::filesystem::file_size(m_path), size) << "a reader changes nothing";
    EXPECT_EQ(open().table(u"Tabel").recordCount(), 90U);
    EXPECT_EQ(mdbCount(m_path, "Tabel"), "90\n");
}

TEST_F(LeftOverJournal, IsFinishedOrDroppedByWhatIsInTheFile)
{
    const Bytes torn = bytesOf(m_path);
    const Bytes journal = bytesOf(m_journal);
    const auto changed =
        std::mismatch(m_before.begin() + kPageSize, m_before.end(), torn.begin() + kPageSize)
            .first -
        m_before.begin();
    const auto with = [](Bytes bytes, std::ptrdiff_t offset, std::uint8_t value,
                         std::ptrdiff_t length = 1) {
        std::fill_n(bytes.begin() + offset, length, value);
        return bytes;
    };
    const Bytes restored = [&] {
        const auto backup = m_folder / "backup.mdb";
        makeTabel(backup, 70);
        return bytesOf(backup);
    }();
    const Bytes copy = [&] {
        writeFile(m_folder / "copy.mdb", m_before);
        Database::open(m_folder / "copy.mdb").table(u"Tabel").appendRow(sampleRow(1000));
        return bytesOf(m_folder / "copy.mdb");
    }();
    const std::ptrdiff_t sector = changed - changed % 512;
    struct Case {
        const char *what;
        Bytes file;
        std::uint32_t rows;
    };
    const Case cases[] = {
        {"as it was left", torn, 90},
        {"nothing has reached the file", m_before, 20},
        {"a changed sector came out as zeros", with(torn, sector, 0, 512), 90},
        {"a part of a sector was written", with(torn, changed, m_before[std::size_t(changed)]), 90},
        {"page 0 came out as zeros", with(torn, 0, 0, 4096), 90},
        {"its counter only, and nothing else was written", with(m_before, 0xE00, 0, 512), 90},
        {"another program has opened the half", with(torn, 0xE00, 7), 90},
        {"another program has opened the whole", with(m_before, 0xE00, 7), 20},
        {"another file stands in its place", restored, 70},
        {"a copy of before with one statement of its own", copy, 21},
    };
    for (const auto &[what, file, rows] : cases) {
        writeFile(m_path, file);
        writeFile(m_journal, journal);
        for (const bool readOnly : {true, false}) {
            const Database database = open(readOnly);
            EXPECT_EQ(idsOf(database.table(u"Tabel").records()).size(), rows) << what;
            EXPECT_EQ(findings(database), "") << what;
        }
        std::filesystem::remove(m_journal); // of no use any more
        EXPECT_EQ(open().table(u"Tabel").recordCount(), rows) << what;
    }
}

TEST_F(LeftOverJournal, IsKeptWhenItFitsTheFileNeitherWay)
{
    Bytes longer = bytesOf(m_path);
    longer.resize(longer.size() + 64 * kPageSize); // by another program, on half of a statement
    std::fill_n(longer.begin() + kPageSize, kPageSize, std::uint8_t{0});
    writeFile(m_path, longer);
    const Bytes journal = bytesOf(m_journal);
    EXPECT_EQ(errorOf([&] { open(true); }), ErrorCode::Damaged);
    EXPECT_EQ(bytesOf(m_journal), journal) << "a reader changes nothing";
    const auto kept = m_folder / "autoclava1.mdb.jrn.kept";
    try {
        open();
        FAIL() << "a damaged file was opened";
    } catch (const Error &error) {
        EXPECT_EQ(error.code(), ErrorCode::Damaged);
        EXPECT_NE(std::string(error.what()).find(displayName(kept)), std::string::npos)
            << error.what();
    }
    EXPECT_EQ(bytesOf(kept), journal);
    EXPECT_FALSE(errorOf([&] { open(); })) << "what is left can be looked at";
}

TEST_F(LeftOverJournal, ThatAnotherOpenerHasKeptMeanwhileIsNotCleared)
{
    const auto files = makeSystemFiles();
    JournalFile journal(*files, m_path, unsynced());
    EXPECT_TRUE(journal.hasStatement());
    JournalFile(*files, m_path, unsynced()).keepAside();
    EXPECT_FALSE(journal.read());
    journal.clear();
    EXPECT_TRUE(std::filesystem::exists(m_folder / "autoclava1.mdb.jrn.kept"));
}

TEST_F(LeftOverJournal, AnotherFileOfItsNameIsKept)
{
    open();
    for (const char *kept : {"autoclava1.mdb.jrn.kept", "autoclava1.mdb.jrn.kept2"}) {
        writeFile(m_journal, m_before);
        EXPECT_EQ(open(true).table(u"Tabel").recordCount(), open().table(u"Tabel").recordCount());
        EXPECT_EQ(bytesOf(m_journal), m_before) << "reading changes nothing";
        Database database = open();
        database.table(u"Tabel").deleteAll();
        EXPECT_EQ(bytesOf(m_folder / kept), m_before);
    }
}

TEST_F(LeftOverJournal, OfAnEarlierVersionIsFinished)
{
    Bytes journal = bytesOf(m_journal);
    journal.erase(journal.begin(), journal.begin() + kStatementOffset);
    std::ranges::copy(kOldStatementMark, journal.begin());
    hashJournal(journal, 0);
    writeFile(m_journal, journal);
    EXPECT_EQ(idsOf(open(true).table(u"Tabel").byIndex(u"IndexPrimar")).size(), 90U);
    EXPECT_EQ(findings(open()), "");
    open().table(u"Tabel").appendRow(sampleRow(91));
    EXPECT_EQ(open().table(u"Tabel").recordCount(), 91U);
}

TEST_F(LeftOverJournal, BelongsToTheFileWhateverNameOpensIt)
{
    const auto backup = m_folder / "autoclava1.bak";
    writeFile(backup, m_before);
    EXPECT_EQ(Database::open(backup).table(u"Tabel").recordCount(), 20U);
    std::error_code failure;
    std::filesystem::create_symlink(m_path, m_folder / "link.mdb", failure);
    const auto name = failure ? m_path : m_folder / "link.mdb"; // some systems have no links
    EXPECT_EQ(Database::open(name).table(u"Tabel").recordCount(), 90U);
}

} // namespace
} // namespace jet
