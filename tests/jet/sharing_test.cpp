#include "jet/compact.h"
#include "jet/journal.h"
#include "jet/session.h"

#include "tests/jet/interrupted_append.h"

#include <algorithm>
#include <fstream>

// Several openers of one file, in this process and others.

namespace jet
{
namespace
{

class Sharing : public testing::Test
{
protected:
    Sharing() { makeTabel(m_path, 20); }

    Database open(bool readOnly = false) const
    {
        OpenOptions options = unsynced();
        options.readOnly = readOnly;
        return Database::open(m_path, options);
    }
    bool exists(const char *name) const { return std::filesystem::exists(m_folder / name); }

    TemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "autoclava1.mdb";
};

TEST_F(Sharing, OneWritesAtATimeAndNobodySeesHalf)
{
    Database writer = open();
    Database other = open();
    const Database reader = open(true);
    Table table = writer.table(u"Tabel");
    const Table seen = reader.table(u"Tabel");
    {
        Transaction transaction(writer);
        appendSamples(table, 21, 200);
        EXPECT_EQ(seen.recordCount(), 20U);
        EXPECT_EQ(errorOf([&] { other.table(u"Tabel").appendRow(sampleRow(21)); }),
                  ErrorCode::InUse);
        transaction.commit();
    }
    EXPECT_EQ(seen.recordCount(), 200U);
    EXPECT_EQ(idsOf(seen.byIndex(u"IndexPrimar")).size(), 200U);
    {
        const Snapshot snapshot(reader);
        EXPECT_EQ(errorOf([&] { table.appendRow(sampleRow(201)); }), ErrorCode::InUse);
        EXPECT_EQ(seen.recordCount(), 200U);
    }
    {
        const Snapshot own(writer);
        table.appendRow(sampleRow(201));
        EXPECT_EQ(errorOf([&] { other.table(u"Tabel").appendRow(sampleRow(202)); }),
                  ErrorCode::InUse);
    }
    EXPECT_EQ(other.table(u"Tabel").recordCount(), 201U);
    EXPECT_EQ(errorOf([&] { Database::open(m_path, {true}).table(u"Tabel").deleteAll(); }),
              ErrorCode::ReadOnly);
    EXPECT_EQ(findings(other), "");
}

TEST_F(Sharing, TablesOfADatabaseInUseAreNotDropped)
{
    Database owner = open();
    {
        const Database other = open(true);
        EXPECT_EQ(errorOf([&] { owner.dropTable(u"Tabel"); }), ErrorCode::TableLocked);
        EXPECT_EQ(errorOf([&] { owner.renameTable(u"Tabel", u"T2", kSomeDay); }),
                  ErrorCode::TableLocked);
        EXPECT_EQ(other.table(u"Tabel").recordCount(), 20U);
    }
    Transaction transaction(owner);
    owner.renameTable(u"Tabel", u"T2", kSomeDay);
    EXPECT_EQ(errorOf([&] { open(); }), ErrorCode::InUse);
    transaction.commit();
    EXPECT_EQ(open().table(u"t2").recordCount(), 20U);
    EXPECT_EQ(errorOf([&] { owner.table(u"Tabel"); }), ErrorCode::NoSuchTable);
}

TEST_F(Sharing, LockFileOfADeadProgramHindersNobody)
{
    std::ofstream(m_folder / "autoclava1.ldb") << "left over";
    open().table(u"Tabel").appendRow(sampleRow(21));
    EXPECT_FALSE(exists("autoclava1.ldb"));
    EXPECT_FALSE(exists("autoclava1.mdb.jrn"));
}

TEST_F(Sharing, KilledWriterLosesNothingItReported)
{
    long survived = 20;
    for (int round = 0; round < 12; ++round) {
        const Outcome writer = run({APPENDING_WRITER, m_path.string(), std::to_string(survived + 1),
                                    std::to_string(6 + 7 * round)});
        const std::size_t lastLine = writer.output.rfind('\n', writer.output.size() - 2) + 1;
        const long last = std::stol(writer.output.substr(lastLine));
        EXPECT_GE(last, survived + 6 + 7 * round);
        const Database database = open();
        survived = database.table(u"Tabel").recordCount();
        EXPECT_TRUE(survived == last || survived == last + 1) << survived << " of " << last;
        EXPECT_EQ(findings(database), "");
    }
}

TEST_F(Sharing, LeftOverJournalIsDroppedWhenAnotherProgramHasChangedTheFile)
{
    const Bytes before = bytesOf(m_path);
    interruptAppend(m_path, 21, 21);
    const Bytes torn = bytesOf(m_path);
    const auto changed = std::ranges::mismatch(before, torn).in1 - before.begin();
    const auto files = makeSystemFiles();
    const auto log = files->open(m_folder / "autoclava1.mdb.jrn", FileSystem::Access::Read);
    const auto isUsedOn = [&](const Bytes &foreign) {
        writeFile(m_path, foreign);
        return Journal::read(*log)->mustBeFinished(*files->open(m_path, FileSystem::Access::Read));
    };
    const auto usedAfterChange = [&](std::ptrdiff_t offset) {
        Bytes foreign = torn;
        foreign[static_cast<std::size_t>(offset)] ^= 0x55;
        return isUsedOn(foreign);
    };
    Bytes longer = torn;
    longer.resize(torn.size() + kPageSize);
    EXPECT_FALSE(isUsedOn(longer)) << "a page that the statement did not add";
    EXPECT_TRUE(usedAfterChange(6 * 4096)) << "a page that the statement has nothing to do with";
    EXPECT_FALSE(usedAfterChange(0xE00)) << "a user's commit counter";
    EXPECT_FALSE(usedAfterChange(4096 + 100)) << "a page that the statement only relied on";
    EXPECT_FALSE(usedAfterChange(changed)) << "a page that the statement has changed";
}

class LeftOverJournal : public Sharing
{
protected:
    LeftOverJournal() { interruptAppend(m_path, 21, 90); }

    const Bytes m_before = bytesOf(m_path);
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
    EXPECT_FALSE(exists("autoclava1.mdb.jrn"));
}

TEST_F(LeftOverJournal, IsDroppedWhenNothingOfItReachedTheFile)
{
    writeFile(m_path, m_before);
    EXPECT_EQ(open(true).table(u"Tabel").recordCount(), 20U);
    EXPECT_EQ(open().table(u"Tabel").recordCount(), 20U);
    EXPECT_FALSE(exists("autoclava1.mdb.jrn"));
}

TEST_F(Sharing, OpenerThatSurvivesAStoppedWriterFinishesItsStatement)
{
    const Database survivor = open();
    EXPECT_EQ(idsOf(survivor.table(u"Tabel").records()).size(), 20U);
    interruptAppend(m_path, 21, 90);
    EXPECT_EQ(idsOf(survivor.table(u"Tabel").records()).size(), 90U);
    EXPECT_EQ(findings(survivor), "");
}

TEST_F(Sharing, FilesBesideTheDatabaseHaveItsRights)
{
    const auto rightsOf = [&](const char *name) {
        return std::filesystem::status(m_folder / name).permissions();
    };
    using std::filesystem::perms;
    std::filesystem::permissions(m_path, perms::owner_read | perms::owner_write |
                                             perms::group_read | perms::group_write);
    Database database = open();
    database.table(u"Tabel").appendRow(sampleRow(21));
    EXPECT_EQ(rightsOf("autoclava1.ldb"), rightsOf("autoclava1.mdb"));
    EXPECT_EQ(rightsOf("autoclava1.mdb.jrn"), rightsOf("autoclava1.mdb"));
}

/// A compaction comes between the first look at a database and its lock.
class CompactingFiles final : public SystemFilesBut
{
public:
    std::unique_ptr<LockFile> openLock(const std::filesystem::path &path, Access access) override
    {
        auto lock = SystemFilesBut::openLock(path, access);
        compactDatabase(std::filesystem::path(path).replace_extension(".mdb"), kSomeDay);
        return lock;
    }
};

/// The journal goes between a look for it and its opening.
class VanishingJournal final : public SystemFilesBut
{
public:
    bool exists(const std::filesystem::path &path) override
    {
        return path.extension() == ".jrn" || SystemFilesBut::exists(path);
    }
};

TEST_F(Sharing, OpenerThatWaitedForACompactionWritesToTheNewFile)
{
    {
        Database waited = Database::open(m_path, unsynced(), std::make_shared<CompactingFiles>());
        waited.table(u"Tabel").appendRow(sampleRow(21));
    }
    EXPECT_EQ(open().table(u"Tabel").recordCount(), 21U);
}

TEST_F(Sharing, JournalRemovedByTheLastWriterDisturbsNoReader)
{
    const auto reader =
        Database::open(m_path, {.readOnly = true}, std::make_shared<VanishingJournal>());
    EXPECT_EQ(reader.table(u"Tabel").recordCount(), 20U);
}

TEST_F(Sharing, ReadersGoBehindAWriterThatWaits)
{
    const Database reader = open(true);
    const auto waiting = makeSystemFiles()->openLock(lockPath(m_path), FileSystem::Access::Write);
    ASSERT_TRUE(waiting->tryLock(LockFile::Part::Turn, LockFile::Mode::Exclusive));
    EXPECT_EQ(errorOf([&] { reader.table(u"Tabel"); }), ErrorCode::InUse);
    waiting->unlock(LockFile::Part::Turn);
    EXPECT_EQ(reader.table(u"Tabel").recordCount(), 20U);
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
    EXPECT_FALSE(exists("autoclava1.mdb.jrn"));
}

TEST_F(Sharing, CompactionKeepsWhatItDoesNotUnderstandAndRefusesDamage)
{
    const Bytes properties{'M', 'R', '2', 0, 1, 2, 3};
    {
        Session session(makeSystemFiles(), m_path, unsynced());
        session.begin();
        session.catalog().setProperties(u"Tabel", properties);
        session.commit();
    }
    std::filesystem::permissions(m_path, std::filesystem::perms::owner_all);
    const auto rights = std::filesystem::status(m_path).permissions();
    compactDatabase(m_path, kSomeDay);
    EXPECT_EQ(std::filesystem::status(m_path).permissions(), rights);
    {
        Session session(makeSystemFiles(), m_path, unsynced());
        Catalog &catalog = session.catalog();
        EXPECT_EQ(catalog.properties(*catalog.find(u"Tabel")), Value(properties));
    }
    std::fstream file(m_path, std::ios::binary | std::ios::in | std::ios::out);
    const auto count = static_cast<std::streamoff>(
        fileOffset(
            Session(makeSystemFiles(), m_path, {true}).catalog().find(u"Tabel")->definition) +
        16);
    file.seekp(count);
    file.put(21); // rows: one more than there are
    file.close();
    EXPECT_EQ(errorOf([&] { compactDatabase(m_path, kSomeDay); }), ErrorCode::Damaged);
    EXPECT_TRUE(std::filesystem::exists(m_path));
}

} // namespace
} // namespace jet
