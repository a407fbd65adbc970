#include "tests/jet/memory_disk.h"
#include "tests/jet/sample_database.h"

#include "jet/compact.h"
#include "jet/file/journal.h"
#include "jet/store/new_database.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

// A program may end, a disk fail or the power go at any write of a statement: the file then is as
// it was before the statement or as it is after it, and everything in it fits together.

namespace jet
{
namespace
{

constexpr const char *kFile = "folder/autoclava1.mdb";
constexpr const char *kJournal = "folder/autoclava1.mdb.jrn";
/// A program that is stopped knows nothing of sectors.
constexpr std::size_t kOffTheGrid = 700;

struct Scenario {
    const char *name;
    std::function<void(Database &)> prepare;
    std::function<void(Database &)> statement;
    std::size_t bytesBehindLastPage = 0;

    friend void PrintTo(const Scenario &scenario, std::ostream *out) { *out << scenario.name; }
};

Row noteRow(std::int32_t id, std::size_t length)
{
    return {id, Text(length, u'n'), id % 2 == 0};
}

TableDesign notesDesign()
{
    TableDesign design;
    design.name = u"Note";
    design.columns = {
        {u"Nr", ColumnType::Long}, {u"Text", ColumnType::Memo}, {u"Da", ColumnType::Boolean}};
    design.indexes = {{u"Nr", {{u"Nr"}}, true}};
    return design;
}

/// Keys of two kinds, one of them descending, and an index of texts.
TableDesign loadsDesign()
{
    TableDesign design;
    design.name = u"Sarje";
    design.columns = {{u"Nume", ColumnType::Text, 40},
                      {u"Data", ColumnType::DateTime},
                      {u"Nota", ColumnType::Text, 255}};
    design.indexes = {{u"Cheie", {{u"Nume"}, {u"Data", true}}, true}, {u"Nota", {{u"Nota"}}}};
    return design;
}

void prepareLoads(Database &database, int rows)
{
    Table table = database.createTable(loadsDesign(), kSomeDay);
    for (int i = 0; i < rows; ++i)
        table.appendRow({Text(u"Șarja ") + static_cast<char16_t>(u'a' + i % 26),
                         DateTime{38000.0 + i}, Text(static_cast<std::size_t>(i), u'é')});
}

void prepareTabel(Database &database, std::int32_t rows)
{
    Table table = database.createTable(tabelDesign(), kSomeDay);
    appendSamples(table, 1, rows);
}

void prepareTwenty(Database &database)
{
    prepareTabel(database, 20);
}

void appendOne(Database &database)
{
    database.table(u"Tabel").appendRow(sampleRow(21));
}

const Scenario kScenarios[] = {
    {"append", prepareTwenty, appendOne},
    {"append to a file that ends inside a page", prepareTwenty, appendOne, 100},
    {"append with a new page and a split index",
     [](Database &database) { prepareTabel(database, 401); },
     [](Database &database) {
         Transaction transaction(database);
         Table table = database.table(u"Tabel");
         appendSamples(table, 402, 460);
         transaction.commit();
     }},
    {"delete the middle", [](Database &database) { prepareTabel(database, 120); },
     [](Database &database) {
         Transaction transaction(database);
         Cursor cursor = database.table(u"Tabel").records();
         while (cursor.next()) {
             if (std::get<std::int32_t>(cursor.value(0)) % 60 > 5)
                 cursor.erase();
         }
         transaction.commit();
     }},
    {"delete all", [](Database &database) { prepareTabel(database, 450); },
     [](Database &database) { database.table(u"Tabel").deleteAll(); }},
    {"create a table", [](Database &) {},
     [](Database &database) { database.createTable(tabelDesign(), kSomeDay); }},
    {"drop a table", [](Database &database) { prepareTabel(database, 60); },
     [](Database &database) { database.dropTable(u"Tabel"); }},
    {"copy, drop and rename", [](Database &database) { prepareTabel(database, 60); },
     [](Database &database) {
         Transaction transaction(database);
         copyDropAndRename(database);
         database.table(u"Tabel").appendRow(sampleRow(61));
         transaction.commit();
     }},
    {"empty and refill", [](Database &database) { prepareTabel(database, 130); },
     [](Database &database) {
         Transaction transaction(database);
         Table table = database.table(u"Tabel");
         table.deleteAll();
         appendSamples(table, 1, 70);
         transaction.commit();
     }},
    {"text and composite keys", [](Database &database) { prepareLoads(database, 60); },
     [](Database &database) {
         Transaction transaction(database);
         Table table = database.table(u"Sarje");
         Cursor cursor = table.records();
         for (int row = 0; cursor.next(); ++row) {
             if (row % 5 == 0)
                 cursor.update({{u"Nume", u"Altă șarjă"}, {u"Nota", Text(200, u'w')}});
             else if (row % 7 == 0)
                 cursor.erase();
         }
         transaction.commit();
     }},
    {"rows that outgrow their page", [](Database &database) { prepareLoads(database, 40); },
     [](Database &database) {
         Transaction transaction(database);
         Cursor cursor = database.table(u"Sarje").records();
         while (cursor.next())
             cursor.update({{u"Nota", Text(255, u'ș')}});
         transaction.commit();
     }},
    {"200 columns", [](Database &database) { database.createTable(wideDesign(u"Lat"), kSomeDay); },
     [](Database &database) {
         database.table(u"Lat").append(Assignments{{u"Coloana cu nume lung 199", 1.5}});
     }},
    {"long values of every form",
     [](Database &database) {
         Table table = database.createTable(notesDesign(), kSomeDay);
         table.appendRow(noteRow(1, 20));
         table.appendRow(noteRow(2, 3000));
         table.appendRow(noteRow(3, 9000));
     },
     [](Database &database) {
         Transaction transaction(database);
         Table table = database.table(u"Note");
         Cursor cursor = table.records();
         for (const std::size_t length : {9000, 20, 3000}) {
             ASSERT_TRUE(cursor.next());
             cursor.update({{u"Text", Text(length, u'm')}});
         }
         table.appendRow(noteRow(4, 5000));
         transaction.commit();
     }},
};

std::shared_ptr<FileSystem> filesOf(MemoryDisk &disk)
{
    return std::make_shared<MemoryFileSystem>(disk);
}

MemoryDisk emptyDisk()
{
    MemoryDisk disk;
    makeNewDatabase(kFile, kSomeDay, filesOf(disk));
    disk.endProgram();
    return disk;
}

Database openOn(MemoryDisk &disk)
{
    return Database::open(kFile, {}, filesOf(disk));
}

/// All tables with all rows: what must be the one or the other state.
using Content = std::vector<std::pair<Text, std::vector<Row>>>;

Content contentOf(const Database &database)
{
    Content content;
    for (const Text &name : database.tables())
        content.emplace_back(name, rowsOf(database.table(name).records()));
    return content;
}

/// Calls `inspect(disk, done, what)` after each operation of `run(disk)` in turn was hit, writes at
/// each `step` bytes; `done` when it was carried out all the same.
template <typename Run, typename Inspect>
void tryEveryFault(const MemoryDisk &start, MemoryDisk::Fault fault, Run &&run, Inspect &&inspect,
                   std::size_t step = kSectorSize)
{
    for (long at = 1;; ++at) {
        std::size_t length = 0;
        for (std::size_t kept = 0; kept <= length; kept += step) {
            MemoryDisk disk = start;
            disk.setFault(fault, at, kept);
            const bool done = !errorOf([&] { run(disk); });
            if (!disk.fired)
                return;
            length = disk.lastWrite;
            inspect(disk, done,
                    "operation " + std::to_string(at) + ", " + std::to_string(kept) + " bytes");
        }
    }
}

class Crash : public testing::TestWithParam<Scenario>
{
protected:
    void SetUp() override
    {
        m_start = emptyDisk();
        {
            Database database = openOn(m_start);
            inTransaction(database, [&] { GetParam().prepare(database); });
        }
        Bytes &content = m_start.files[kFile].content;
        content.resize(content.size() + GetParam().bytesBehindLastPage, 7);
        m_start.endProgram();
        MemoryDisk disk = m_start;
        Database database = openOn(disk);
        m_before = contentOf(database);
        GetParam().statement(database);
        ASSERT_EQ(findings(database), "");
        m_after = contentOf(database);
        ASSERT_FALSE(m_before == m_after);
    }

    static void runStatement(MemoryDisk &disk)
    {
        Database database = openOn(disk);
        GetParam().statement(database);
    }

    void expectOneOrTheOther(const Database &database, bool mustBeAfter, const std::string &what)
    {
        const Content content = contentOf(database);
        EXPECT_TRUE(content == m_after || (!mustBeAfter && content == m_before)) << what;
        EXPECT_EQ(findings(database), "") << what;
    }

    void expectOneOrTheOtherWithoutPower(MemoryDisk &disk, bool mustBeAfter,
                                         const std::string &what)
    {
        ++m_seed;
        disk.losePower(m_seed,
                       m_seed % 2 == 0 ? MemoryDisk::Sectors::Whole : MemoryDisk::Sectors::Garbled);
        expectOneOrTheOther(openOn(disk), mustBeAfter, what + ", power lost");
    }

    static void expectContent(const Database &database, const Content &content,
                              const std::string &what)
    {
        EXPECT_TRUE(contentOf(database) == content) << what;
        EXPECT_EQ(findings(database), "") << what;
    }

    MemoryDisk m_start;
    Content m_before;
    Content m_after;
    std::uint32_t m_seed = 1;
};

TEST_P(Crash, StoppedOrTornWriteLeavesAllOrNothing)
{
    tryEveryFault(
        m_start, MemoryDisk::Fault::Stop, runStatement,
        [&](MemoryDisk &disk, bool done, const std::string &what) {
            disk.endProgram();
            expectOneOrTheOther(openOn(disk), done, what);
        },
        kOffTheGrid);
}

TEST_P(Crash, LostPowerLeavesAllOrNothing)
{
    tryEveryFault(m_start, MemoryDisk::Fault::Stop, runStatement,
                  [&](auto &&...left) { expectOneOrTheOtherWithoutPower(left...); });
}

TEST_P(Crash, FailedWriteKeepsOldContentAndTheStatementMayBeTriedAgain)
{
    m_start.failure = ErrorCode::DiskFull;
    const auto runTwice = [&](MemoryDisk &disk) {
        Database database = openOn(disk);
        const auto error = errorOf([&] { GetParam().statement(database); });
        if (!error)
            return;
        EXPECT_EQ(error, ErrorCode::DiskFull);
        expectContent(database, m_before, "in the program that failed");
        MemoryDisk left = disk;
        left.endProgram();
        expectContent(openOn(left), m_before, "in the file as it is left");
        GetParam().statement(database);
    };
    tryEveryFault(m_start, MemoryDisk::Fault::Fail, runTwice,
                  [&](MemoryDisk &disk, bool done, const std::string &what) {
                      disk.endProgram();
                      expectContent(openOn(disk), done ? m_after : m_before, what);
                  });
}

// One trouble after another, with the statement that comes most often.
using CrashAgain = Crash;

TEST_P(CrashAgain, DiskThatStaysBrokenIsNeverSeenHalfWritten)
{
    const auto runAndReadTwice = [&](MemoryDisk &disk) {
        Database database = Database::open(kFile, {.cachedPages = 4}, filesOf(disk));
        if (!errorOf([&] { GetParam().statement(database); }))
            return;
        for (const char *what : {"read once", "read again"}) {
            const auto error = errorOf([&] { expectOneOrTheOther(database, false, what); });
            EXPECT_TRUE(!error || error == ErrorCode::DiskError) << what;
        }
    };
    tryEveryFault(m_start, MemoryDisk::Fault::Stop, runAndReadTwice, [](auto &&...) {});
}

TEST_P(CrashAgain, PowerLostAfterAKilledProgramLeavesAllOrNothing)
{
    const auto inspect = [&](auto &&...left) { expectOneOrTheOtherWithoutPower(left...); };
    const auto goOn = [&](MemoryDisk &disk, bool, const std::string &what) {
        disk.fault = MemoryDisk::Fault::None; // the system goes on and may still lose everything
        tryEveryFault(disk, MemoryDisk::Fault::Stop, runStatement, inspect, kPageSize);
        const bool isAfter = contentOf(openOn(disk)) == m_after;
        inspect(disk, isAfter, what);
    };
    tryEveryFault(m_start, MemoryDisk::Fault::Stop, runStatement, goOn, kPageSize);
}

// Whoever makes the journal may die before its name is on the disk; the next one must not rely on
// it.
TEST_P(CrashAgain, JournalOfADeadMakerGuardsTheNextStatement)
{
    for (long at = 1;; ++at) {
        MemoryDisk disk = m_start;
        Database survivor = openOn(disk);
        survivor.table(u"Tabel").appendRow(sampleRow(1000));
        MemoryFileSystem(disk).remove(kJournal); // by hand
        disk.setFault(MemoryDisk::Fault::Stop, at, 0);
        errorOf([&] { openOn(disk).table(u"Tabel").appendRow(sampleRow(1001)); });
        if (!disk.fired)
            return;
        disk.setFault(MemoryDisk::Fault::None, 0, 0);
        const std::uint32_t before = survivor.table(u"Tabel").recordCount();
        for (long next = 1;; ++next) {
            MemoryDisk later = disk;
            Database other = openOn(later);
            later.setFault(MemoryDisk::Fault::Stop, next, 0);
            const bool done = !errorOf([&] { other.table(u"Tabel").appendRow(sampleRow(1002)); });
            const bool fired = later.fired;
            later.losePower(++m_seed);
            const Database database = openOn(later);
            const std::uint32_t rows = database.table(u"Tabel").recordCount();
            EXPECT_TRUE(rows == before + 1 || (!done && rows == before)) << at << ", " << next;
            EXPECT_EQ(findings(database), "") << at << ", " << next;
            if (!fired)
                break;
        }
    }
}

TEST(JournalThatCannotBeEmptied, LetsTheStatementSucceed)
{
    MemoryDisk disk = emptyDisk();
    MemoryDisk undisturbed = disk;
    constexpr long kNever = 1'000'000;
    Database first = openOn(undisturbed);
    undisturbed.setFault(MemoryDisk::Fault::Stop, kNever, 0);
    first.createTable(tabelDesign(), kSomeDay);
    Database second = openOn(disk);
    disk.setFault(MemoryDisk::Fault::Stop, undisturbed.operations, 0);
    EXPECT_FALSE(errorOf([&] { second.createTable(tabelDesign(), kSomeDay); }));
    EXPECT_TRUE(disk.fired);
    disk.endProgram();
    EXPECT_EQ(openOn(disk).tables(), std::vector<Text>{u"Tabel"});
}

std::string nameOf(const testing::TestParamInfo<Scenario> &scenario)
{
    std::string name = scenario.param.name;
    std::erase_if(name, [](char c) { return c == ' ' || c == ','; });
    return name;
}

INSTANTIATE_TEST_SUITE_P(Statements, Crash, testing::ValuesIn(kScenarios), nameOf);
INSTANTIATE_TEST_SUITE_P(Statements, CrashAgain, testing::Values(kScenarios[0]), nameOf);

// What makes a whole file: the name leads to the old file or to the new one, never to a part of it.
class WholeFile : public testing::Test
{
protected:
    using Bytes = jet::Bytes;

    /// The database's bytes; nothing when there is none.
    static std::optional<Bytes> bytesOf(const MemoryDisk &disk)
    {
        const auto file = disk.files.find(kFile);
        return file == disk.files.end() ? std::nullopt : std::optional(file->second.content);
    }

    template <typename Run>
    void expectOldOrNew(const MemoryDisk &start, Run &&run)
    {
        const auto old = bytesOf(start);
        MemoryDisk undisturbed = start;
        run(undisturbed);
        const auto renewed = bytesOf(undisturbed);
        ASSERT_TRUE(renewed && renewed != old);
        std::uint32_t seed = 1;
        for (const auto fault : {MemoryDisk::Fault::Stop, MemoryDisk::Fault::Fail}) {
            tryEveryFault(start, fault, run,
                          [&](MemoryDisk &disk, bool done, const std::string &what) {
                              MemoryDisk powerless = disk;
                              powerless.losePower(++seed);
                              disk.endProgram();
                              for (MemoryDisk *found : {&disk, &powerless}) {
                                  const auto bytes = bytesOf(*found);
                                  EXPECT_TRUE(bytes == renewed || (!done && bytes == old)) << what;
                                  if (!bytes)
                                      run(*found); // nothing left over is in the way
                                  EXPECT_EQ(findings(openOn(*found)), "") << what;
                              }
                          });
        }
    }
};

TEST_F(WholeFile, CreatedDatabaseIsThereWholeOrNotAtAll)
{
    MemoryDisk disk;
    // Of a database that had this name once: nothing of it may come back in the new one.
    disk.files[kJournal].content = Bytes(4096);
    expectOldOrNew(disk, [](MemoryDisk &target) {
        makeNewDatabase(kFile, kSomeDay, filesOf(target));
        EXPECT_FALSE(target.files.contains(kJournal));
    });
}

TEST_F(WholeFile, CompactedDatabaseIsTheOldOrTheNewOne)
{
    MemoryDisk start = emptyDisk();
    {
        Database database = openOn(start);
        prepareTabel(database, 120);
        eraseEvery(database.table(u"Tabel"), 3);
    }
    start.endProgram();
    expectOldOrNew(start,
                   [](MemoryDisk &disk) { compactDatabase(kFile, kSomeDay, filesOf(disk)); });
}

} // namespace
} // namespace jet
