#include "jet/compact.h"
#include "jet/store/session.h"

#include "tests/jet/memory_database.h"
#include "tests/jet/new_database.h"

#include <utility>

// Several openers of one file, in this process and others.

namespace jet
{
namespace
{

class Sharing : public DatabaseFile
{
protected:
    Sharing() { makeTabel(m_path, 20); }

    bool exists(const char *name) const { return std::filesystem::exists(m_folder / name); }
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
    std::error_code refused; // by Windows, which keeps an open file
    std::filesystem::remove(m_folder / "autoclava1.ldb", refused); // as users do with stale ones
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

TEST_F(Sharing, KilledWriterLosesNothingItReported)
{
    long survived = 20;
    for (int round = 0; round < 12; ++round) {
        QProcess writer;
        writer.start(APPENDING_WRITER, {QString::fromStdU16String(m_path.u16string()),
                                        QString::number(survived + 1)});
        QByteArray output;
        while (output.count('\n') < 6 + 7 * round && writer.waitForReadyRead())
            output += writer.readAllStandardOutput();
        writer.kill();
        ASSERT_TRUE(writer.waitForFinished());
        output += writer.readAllStandardOutput();
        const long last = output.trimmed().split('\n').last().toLong();
        EXPECT_GE(last, survived + 6 + 7 * round);
        const Database database = open();
        survived = database.table(u"Tabel").recordCount();
        EXPECT_TRUE(survived == last || survived == last + 1) << survived << " of " << last;
        EXPECT_EQ(findings(database), "");
    }
}

TEST_F(Sharing, FilesBesideTheDatabaseAndItsCompactionHaveItsRights)
{
    const auto rightsOf = [&](const char *name) {
        return std::filesystem::status(m_folder / name).permissions();
    };
    using std::filesystem::perms;
    std::filesystem::permissions(m_path, perms::owner_read | perms::owner_write |
                                             perms::group_read | perms::group_write);
    const perms rights = rightsOf("autoclava1.mdb");
    {
        Database database = open();
        database.table(u"Tabel").appendRow(sampleRow(21));
        EXPECT_EQ(rightsOf("autoclava1.ldb"), rights);
        EXPECT_EQ(rightsOf("autoclava1.mdb.jrn"), rights);
    }
    compactDatabase(m_path, kSomeDay);
    EXPECT_EQ(rightsOf("autoclava1.mdb"), rights);
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

/// Another opener's statement comes between a reader's look at the file and its reading of pages.
template <typename Statement>
void overtakeOnce(MemoryDisk &disk, Statement &&statement)
{
    disk.onRead = [statement, isDone = false](std::uint64_t offset) mutable {
        if (offset == kChangeCounterOffset && !std::exchange(isDone, true))
            statement();
    };
}

TEST(SharedInMemory, ReaderWithoutALockFileSeesEveryChangeWhole)
{
    for (const std::size_t cachedPages : {2U, 1000U}) {
        MemoryDisk disk = diskWithSamples(20);
        const Database reader = openOn(disk, {.readOnly = true, .cachedPages = cachedPages});
        const Table seen = reader.table(u"Tabel");
        Cursor cursor = seen.records();
        ASSERT_TRUE(cursor.next());
        Database writer = openOn(disk, unsynced());
        std::int32_t rows = 20;
        const auto appendMany = [&] {
            inTransaction(writer,
                          [&] { appendSamples(writer.table(u"Tabel"), rows + 1, rows + 400); });
            rows += 400;
        };
        for (const std::size_t expected : {820U, 1620U}) {
            appendMany();
            EXPECT_EQ(seen.recordCount(), expected - 400);
            overtakeOnce(disk, appendMany);
            EXPECT_EQ(findings(reader), "") << "pages of two states would not fit together";
            EXPECT_EQ(idsOf(seen.byIndex(u"IndexPrimar")).size(), expected);
        }
        EXPECT_EQ(idsOf(std::move(cursor)).size(), 1619U) << "the rest of a walk begun before";
    }
}

TEST(SharedInMemory, ValueOvertakenByAWriterIsNotLookedForInThePagesOfBefore)
{
    MemoryDisk disk = diskWithSamples(20);
    const Database reader = openOn(disk, {.readOnly = true, .cachedPages = 1});
    const Table seen = reader.table(u"Tabel");
    Cursor cursor = seen.byIndex(u"IndexPrimar");
    ASSERT_TRUE(cursor.next());
    seen.recordCount(); // leaves the map of the table's pages in memory
    Database writer = openOn(disk, unsynced());
    overtakeOnce(disk, [&] {
        writer.table(u"Tabel").deleteAll();
        writer.createTable(tabelDesign(u"Alta"), kSomeDay).appendRow(sampleRow(1));
    });
    EXPECT_EQ(errorOf([&] { cursor.value(u"Id"); }), ErrorCode::RecordDeleted);
}

TEST(SharedInMemory, OpenerThatWaitedForACompactionWritesToTheNewFile)
{
    MemoryDisk disk = diskWithSamples(20);
    bool isCompacted = false;
    disk.onLook = [&](const std::string &) { // between the look at the database and its lock
        if (!std::exchange(isCompacted, true))
            compactDatabase(kFile, kSomeDay, filesOf(disk));
    };
    openOn(disk).table(u"Tabel").appendRow(sampleRow(21));
    EXPECT_EQ(openOn(disk).table(u"Tabel").recordCount(), 21U);
}

TEST(SharedInMemory, NewDatabaseNeverTakesTheNameOfAnother)
{
    MemoryDisk disk;
    const Bytes another{'a'};
    disk.onLook = [&](const std::string &name) {
        if (name == kJournal) // the last that is looked for
            disk[kFile] = another;
    };
    EXPECT_EQ(errorOf([&] { makeNewDatabase(kFile, kSomeDay, filesOf(disk)); }),
              ErrorCode::FileExists);
    EXPECT_EQ(disk[kFile], another);
    EXPECT_FALSE(disk.has(kFile + ".new"));
}

TEST_F(Sharing, DraftAndJournalAreNotReadByThoseWhoMayNotReadTheDatabase)
{
    MemoryDisk disk = diskWithSamples(20);
    compactDatabase(kFile, kSomeDay, filesOf(disk));
    EXPECT_TRUE(disk.contents[disk.names[kFile]].madePrivate);
    openOn(disk).table(u"Tabel").appendRow(sampleRow(21));
    EXPECT_TRUE(disk.contents[disk.names[kJournal]].madePrivate);
    using std::filesystem::perms;
    std::filesystem::permissions(m_path, perms::owner_read | perms::owner_write);
    const auto files = makeSystemFiles();
    const auto draft = m_folder / "draft";
    files->open(draft, FileSystem::Access::CreatePrivate);
    EXPECT_EQ(std::filesystem::status(draft).permissions(),
              std::filesystem::status(m_path).permissions());
    EXPECT_EQ(errorOf([&] { files->place(draft, m_path); }), ErrorCode::FileExists);
}

TEST(SharedInMemory, CompactionKeepsWhatItDoesNotUnderstandAndRefusesDamage)
{
    MemoryDisk disk = diskWithSamples(20);
    const Bytes properties{'M', 'R', '2', 0, 1, 2, 3};
    {
        Session session(filesOf(disk), kFile, unsynced());
        session.begin();
        session.catalog().setProperties(u"Tabel", properties);
        session.commit();
    }
    compactDatabase(kFile, kSomeDay, filesOf(disk));
    {
        Session session(filesOf(disk), kFile, unsynced());
        Catalog &catalog = session.catalog();
        EXPECT_EQ(catalog.properties(*catalog.find(u"Tabel")), Value(properties));
    }
    FileImage image(disk[kFile]);
    image.page(image.definitionPage())[kRowCountOffset] = 21; // one more than there are
    disk[kFile] = image.bytes();
    EXPECT_EQ(errorOf([&] { compactDatabase(kFile, kSomeDay, filesOf(disk)); }),
              ErrorCode::Damaged);
    EXPECT_EQ(disk[kFile], image.bytes());
}

} // namespace
} // namespace jet
