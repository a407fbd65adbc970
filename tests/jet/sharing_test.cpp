#include "jet/compact.h"
#include "jet/store/new_database.h"
#include "jet/store/session.h"

#include "tests/jet/interrupted_append.h"

#include <fstream>
#include <functional>

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

TEST_F(Sharing, LockFileIsRemovedWhenItIsOursAndOtherwiseLeftAlone)
{
    const auto lockFile = m_folder / "autoclava1.ldb";
    Bytes ofAnEarlierVersion(16328);
    ofAnEarlierVersion[16320] = 3;
    Bytes ofTheDatabaseProgram(64);
    ofTheDatabaseProgram[0] = 'P';
    const std::pair<Bytes, bool> cases[] = {
        {{}, true},
        {ofAnEarlierVersion, true},
        {ofTheDatabaseProgram, false},
        {hex("6E 6F 74 65"), false},
        {bytesOf(m_path), false},
    };
    std::int32_t id = 20;
    for (const auto &[content, isOurs] : cases) {
        writeFile(lockFile, content);
        open().table(u"Tabel").appendRow(sampleRow(++id));
        EXPECT_EQ(exists("autoclava1.ldb"), !isOurs) << id;
        EXPECT_TRUE(isOurs || bytesOf(lockFile) == content) << id;
    }
    // A database of that name is never its own lock.
    std::filesystem::rename(m_path, lockFile);
    EXPECT_EQ(Database::open(lockFile).table(u"Tabel").recordCount(), 25U);
    EXPECT_EQ(Database::open(lockFile, unsynced()).table(u"Tabel").recordCount(), 25U);
}

TEST_F(Sharing, WritersMeetInTheFileWhateverItsNames)
{
    const auto link = m_folder / "alt nume.mdb";
    std::filesystem::create_hard_link(m_path, link);
    Database first = open();
    std::filesystem::remove(m_folder / "autoclava1.ldb"); // as users do with those left over
    Database second = Database::open(link, unsynced());
    Database third = open();
    std::int32_t id = 20;
    for (int round = 0; round < 60; ++round) {
        for (Database *writer : {&first, &second, &third})
            writer->table(u"Tabel").appendRow(sampleRow(++id));
    }
    Transaction transaction(second);
    EXPECT_EQ(errorOf([&] { first.table(u"Tabel").appendRow(sampleRow(id + 1)); }),
              ErrorCode::InUse);
    transaction.rollback();
    for (const Database *reader : {&first, &second, &third})
        EXPECT_EQ(idsOf(reader->table(u"Tabel").byIndex(u"IndexPrimar")).size(), 200U);
    EXPECT_EQ(findings(first), "");
}

#ifndef _WIN32 // where an open file keeps its name
TEST_F(Sharing, NothingIsStoredInAFileThatHasLostItsName)
{
    Database database = open();
    const auto append = [&] { database.table(u"Tabel").appendRow(sampleRow(21)); };
    std::filesystem::rename(m_path, m_folder / "x.mdb");
    EXPECT_EQ(errorOf(append), ErrorCode::FileNotFound);
    std::filesystem::copy(m_folder / "x.mdb", m_path);
    EXPECT_EQ(errorOf(append), ErrorCode::DiskError);
    EXPECT_EQ(open().table(u"Tabel").recordCount(), 20U);
    std::filesystem::rename(m_folder / "x.mdb", m_path);
    append();
    EXPECT_EQ(open().table(u"Tabel").recordCount(), 21U);

    const auto link = m_folder / "link.mdb";
    std::filesystem::create_symlink(m_path, link);
    Database linked = Database::open(link, unsynced());
    std::filesystem::rename(m_path, m_folder / "x.mdb");
    std::filesystem::remove(link);
    std::filesystem::create_symlink(m_folder / "x.mdb", link);
    EXPECT_EQ(errorOf([&] { linked.table(u"Tabel").appendRow(sampleRow(22)); }),
              ErrorCode::FileNotFound)
        << "its journal would stand beside the name of before";
}
#endif

/// Something happens right after a look at the change counter.
class OvertakenFile final : public SystemFileBut
{
public:
    OvertakenFile(std::unique_ptr<File> file, std::function<void()> &event)
        : SystemFileBut(std::move(file)), m_event(event)
    {
    }

    std::size_t read(std::uint64_t offset, MutableBytes bytes) override
    {
        const std::size_t length = SystemFileBut::read(offset, bytes);
        if (offset == kChangeCounterOffset && m_event)
            std::exchange(m_event, nullptr)();
        return length;
    }

private:
    std::function<void()> &m_event;
};

class OvertakenFiles final : public SystemFilesBut
{
public:
    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        return std::make_unique<OvertakenFile>(SystemFilesBut::open(path, access), event);
    }

    std::function<void()> event;
};

TEST_F(Sharing, ReadingOvertakenByAWriterStartsAgain)
{
    const auto files = std::make_shared<OvertakenFiles>();
    const auto reader = Database::open(m_path, {.readOnly = true, .cachedPages = 2}, files);
    const Table seen = reader.table(u"Tabel");
    Database writer = open();
    for (const std::uint32_t rows : {500U, 900U}) {
        seen.recordCount();
        files->event = [&] {
            Table table = writer.table(u"Tabel");
            const auto first = static_cast<std::int32_t>(table.recordCount()) + 1;
            inTransaction(writer,
                          [&] { appendSamples(table, first, static_cast<std::int32_t>(rows)); });
        };
        EXPECT_EQ(findings(reader), "") << "pages of two states would not fit together";
        EXPECT_FALSE(files->event);
        EXPECT_EQ(idsOf(seen.byIndex(u"IndexPrimar")).size(), rows);
    }
}

TEST_F(Sharing, ValueOvertakenByAWriterIsNotLookedForInThePagesOfBefore)
{
    const auto files = std::make_shared<OvertakenFiles>();
    const auto reader = Database::open(m_path, {.readOnly = true, .cachedPages = 1}, files);
    const Table seen = reader.table(u"Tabel");
    Cursor cursor = seen.byIndex(u"IndexPrimar");
    ASSERT_TRUE(cursor.next());
    seen.recordCount(); // leaves the map of the table's pages in memory
    Database writer = open();
    files->event = [&] {
        writer.table(u"Tabel").deleteAll();
        writer.createTable(tabelDesign(u"Alta"), kSomeDay).appendRow(sampleRow(1));
    };
    EXPECT_EQ(errorOf([&] { cursor.value(u"Id"); }), ErrorCode::RecordDeleted);
    EXPECT_FALSE(files->event);
}

/// A reader who may make nothing in the folder.
class FilesWithoutLockFile final : public SystemFilesBut
{
public:
    std::unique_ptr<LockFile> openLock(const std::filesystem::path &, Access) override
    {
        return nullptr;
    }
};

TEST_F(Sharing, ReaderWithoutALockFileSeesEveryChangeWhole)
{
    const auto reader =
        Database::open(m_path, {.readOnly = true}, std::make_shared<FilesWithoutLockFile>());
    const Table seen = reader.table(u"Tabel");
    Cursor cursor = seen.records();
    ASSERT_TRUE(cursor.next());
    Database writer = open();
    for (const std::int32_t last : {200, 450, 460}) {
        Table table = writer.table(u"Tabel");
        const auto first = static_cast<std::int32_t>(table.recordCount()) + 1;
        inTransaction(writer, [&] { appendSamples(table, first, last); });
        EXPECT_EQ(seen.recordCount(), static_cast<std::uint32_t>(last));
        EXPECT_EQ(idsOf(seen.byIndex(u"IndexPrimar")).size(), static_cast<std::size_t>(last));
        EXPECT_EQ(findings(reader), "");
    }
    std::size_t rest = 1;
    while (cursor.next())
        ++rest;
    EXPECT_EQ(rest, 460U) << "a walk begun before";
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
    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        auto file = SystemFilesBut::open(path, access);
        if (!std::exchange(m_isCompacted, true))
            compactDatabase(path, kSomeDay);
        return file;
    }

private:
    bool m_isCompacted = false;
};

/// Notes what others may do with files that have just been made.
class FilesOfACurious final : public SystemFilesBut
{
public:
    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        auto file = SystemFilesBut::open(path, access);
        if (access != Access::Write)
            rights |= std::filesystem::status(path).permissions();
        return file;
    }

    std::filesystem::perms rights{};
};

TEST_F(Sharing, DraftAndJournalAreNotReadByThoseWhoMayNotReadTheDatabase)
{
    using std::filesystem::perms;
    std::filesystem::permissions(m_path, perms::owner_read | perms::owner_write);
    const auto files = std::make_shared<FilesOfACurious>();
    compactDatabase(m_path, kSomeDay, files); // and takes the journal away
    Database::open(m_path, unsynced(), files).table(u"Tabel").appendRow(sampleRow(21));
    EXPECT_EQ(files->rights, std::filesystem::status(m_path).permissions());
}

/// Another program makes a file after it was looked for.
class FilesOfAnother final : public SystemFilesBut
{
public:
    bool exists(const std::filesystem::path &path) override
    {
        return path.extension() != ".mdb" && SystemFilesBut::exists(path);
    }
};

TEST_F(Sharing, NewDatabaseNeverTakesTheNameOfAnother)
{
    const Bytes before = bytesOf(m_path);
    EXPECT_EQ(
        errorOf([&] { makeNewDatabase(m_path, kSomeDay, std::make_shared<FilesOfAnother>()); }),
        ErrorCode::FileExists);
    EXPECT_EQ(bytesOf(m_path), before);
    EXPECT_FALSE(exists("autoclava1.mdb.new"));
}

TEST_F(Sharing, OpenerThatWaitedForACompactionWritesToTheNewFile)
{
    {
        Database waited = Database::open(m_path, unsynced(), std::make_shared<CompactingFiles>());
        waited.table(u"Tabel").appendRow(sampleRow(21));
    }
    EXPECT_EQ(open().table(u"Tabel").recordCount(), 21U);
}

TEST_F(Sharing, ReadersGoBehindAWriterThatWaits)
{
    const Database reader = open(true);
    const auto waiting = makeSystemFiles()->open(m_path, FileSystem::Access::Write);
    ASSERT_TRUE(waiting->tryLock(LockPart::Turn, LockMode::Exclusive));
    EXPECT_EQ(errorOf([&] { idsOf(reader.table(u"Tabel").records()); }), ErrorCode::InUse);
    waiting->unlock(LockPart::Turn);
    EXPECT_EQ(reader.table(u"Tabel").recordCount(), 20U);
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
