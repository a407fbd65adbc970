#include "jet/compact.h"
#include "jet/journal.h"
#include "jet/session.h"

#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

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
    Sharing()
    {
        Database database = Database::create(m_path, kSomeDay, unsynced());
        Table table = database.createTable(tabelDesign(), kSomeDay);
        appendSamples(table, 1, 20);
    }

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
    table.appendRow(sampleRow(201));
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

class LeftOverJournal : public Sharing
{
protected:
    /// Leaves the files as a program does that was stopped after the first page it wrote to the
    /// database.
    void SetUp() override
    {
        const auto journal = m_folder / "autoclava1.mdb.jrn";
        const auto old = m_folder / "old.mdb";
        std::filesystem::copy_file(m_path, old);
        {
            Database database = open();
            Transaction transaction(database);
            Table table = database.table(u"Tabel");
            appendSamples(table, 21, 90);
            transaction.commit();
        }
        // The journal was emptied, so it is written once more from the change between the files.
        const auto load = [](const std::filesystem::path &path) {
            std::ifstream file(path, std::ios::binary);
            return Bytes(std::istreambuf_iterator<char>(file), {});
        };
        m_before = load(old);
        const Bytes after = load(m_path);
        writeJournal(journal, m_before, after);
        std::filesystem::rename(old, m_path);
        m_firstChange = firstDifference(m_before, after);
        put(m_path, m_firstChange, after);
    }

    static std::streamoff firstDifference(const Bytes &before, const Bytes &after)
    {
        const auto place = std::ranges::mismatch(before, after).in1;
        return (place - before.begin()) / 512 * 512;
    }
    /// Writes one sector of `content` into the file.
    static void put(const std::filesystem::path &path, std::streamoff offset, const Bytes &content)
    {
        std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(offset);
        file.write(reinterpret_cast<const char *>(content.data()) + offset, 512);
    }

    static PageBuffer pageOf(const Bytes &file, PageNo page)
    {
        PageBuffer buffer{};
        std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(fileOffset(page)), kPageSize,
                    buffer.begin());
        return buffer;
    }
    static void writeJournal(const std::filesystem::path &path, const Bytes &before,
                             const Bytes &after)
    {
        const auto pagesBefore = static_cast<PageNo>(before.size() / kPageSize);
        const auto pagesAfter = static_cast<PageNo>(after.size() / kPageSize);
        std::vector<PageBuffer> olds(pagesAfter);
        std::vector<PageBuffer> news(pagesAfter);
        std::vector<PageChange> changes;
        for (PageNo page = 0; page < pagesAfter; ++page) {
            news[page] = pageOf(after, page);
            if (page < pagesBefore)
                olds[page] = pageOf(before, page);
            if (page >= pagesBefore)
                changes.push_back({page, nullptr, &news[page]});
            else if (olds[page] != news[page])
                changes.push_back({page, &olds[page], &news[page]});
        }
        const auto file = makeSystemFiles()->open(path, FileSystem::Access::Create);
        std::vector<PageWitness> witnesses;
        for (PageNo page = 0; page < pagesBefore; ++page) {
            if (olds[page] == news[page])
                witnesses.push_back({page, hashBytes(olds[page])});
        }
        Journal::write(*file, pagesBefore, pagesAfter, witnesses, changes);
    }

    Bytes m_before;
    std::streamoff m_firstChange = 0;
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
    put(m_path, m_firstChange, m_before);
    EXPECT_EQ(open(true).table(u"Tabel").recordCount(), 20U);
    EXPECT_EQ(open().table(u"Tabel").recordCount(), 20U);
    EXPECT_FALSE(exists("autoclava1.mdb.jrn"));
}

TEST_F(LeftOverJournal, IsDroppedWhenAnotherProgramHasChangedTheFile)
{
    const auto torn = m_folder / "torn.mdb";
    std::filesystem::copy_file(m_path, torn);
    const auto files = makeSystemFiles();
    const auto log = files->open(m_folder / "autoclava1.mdb.jrn", FileSystem::Access::Read);
    const auto usedAfterChange = [&](std::streamoff offset) {
        std::filesystem::remove(m_path);
        std::filesystem::copy_file(torn, m_path);
        std::fstream file(m_path, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(offset);
        file.put(7);
        file.close();
        return Journal::read(*log)->mustBeFinished(*files->open(m_path, FileSystem::Access::Read));
    };
    EXPECT_FALSE(usedAfterChange(0xE00)) << "a user's commit counter";
    EXPECT_FALSE(usedAfterChange(2 * 4096 + 100)) << "a page that the statement only relied on";
    EXPECT_FALSE(usedAfterChange(m_firstChange + 5)) << "a page that the statement has changed";
}

/// The system's files, for what happens between two looks at them.
class SystemFilesBut : public FileSystem
{
public:
    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        return m_files->open(path, access);
    }
    bool exists(const std::filesystem::path &path) override { return m_files->exists(path); }
    void remove(const std::filesystem::path &path) override { m_files->remove(path); }
    void replace(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        m_files->replace(from, to);
    }
    void syncFolder(const std::filesystem::path &folder) override { m_files->syncFolder(folder); }
    std::unique_ptr<LockFile> openLock(const std::filesystem::path &path, Access access) override
    {
        return m_files->openLock(path, access);
    }

private:
    std::unique_ptr<FileSystem> m_files = makeSystemFiles();
};

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
    std::ofstream(backup, std::ios::binary)
        .write(reinterpret_cast<const char *>(m_before.data()),
               static_cast<std::streamsize>(m_before.size()));
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
