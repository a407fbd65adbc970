#include "tests/jet/memory_database.h"

#include "jet/compact.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

// A program may end, a disk fail or the power go at any write of a statement: the file then is as
// it was before the statement or as it is after it, and everything in it fits together.

namespace jet
{
namespace
{

/// A program that is stopped knows nothing of sectors.
constexpr std::size_t kOffTheGrid = 700;

struct Statement {
    const char *name;
    std::function<void(Database &)> prepare;
    std::function<void(Database &)> run;
    std::size_t bytesBehindLastPage = 0;

    friend void PrintTo(const Statement &statement, std::ostream *out) { *out << statement.name; }
};

std::function<void(Database &)> samples(std::int32_t count)
{
    return [count](Database &database) { makeTabel(database, count); };
}

void appendOne(Database &database)
{
    database.table(u"Tabel").appendRow(sampleRow(1000));
}

const Statement kStatements[] = {
    {"Append", samples(20), appendOne},
    {"AppendToAFileThatEndsInsideAPage", samples(20), appendOne, 100},
    {"AppendWithANewPageAndASplitIndex", samples(401),
     [](Database &database) {
         inTransaction(database, [&] { appendSamples(database.table(u"Tabel"), 402, 460); });
     }},
    {"CreateATable", [](Database &) {}, samples(0)},
    {"CopyDropAndRename", samples(60),
     [](Database &database) {
         inTransaction(database, [&] {
             copyDropAndRename(database);
             appendOne(database);
         });
     }},
    {"EmptyAndRefill", samples(130),
     [](Database &database) {
         Table table = database.table(u"Tabel");
         inTransaction(database, [&] {
             table.deleteAll();
             appendSamples(table, 1, 70);
         });
     }},
    {"ChangeKeysAndLongValues",
     [](Database &database) { appendNotes(database.createTable(notesDesign(), kSomeDay), 1, 30); },
     [](Database &database) {
         inTransaction(database, [&] { changeNotes(database.table(u"Note")); });
     }},
};

/// All tables with all rows: what must be the one or the other state.
using Tables = std::vector<std::pair<Text, std::vector<Row>>>;

Tables tablesOf(const Database &database)
{
    Tables tables;
    for (const Text &name : database.tables())
        tables.emplace_back(name, rowsOf(database.table(name).records()));
    return tables;
}

/// Calls `inspect(disk, done, what)` after each operation of `run(disk)` in turn was hit, writes at
/// each `step` bytes; `done` when it was carried out all the same.
template <typename Run, typename Inspect>
void tryEveryFault(const MemoryDisk &start, MemoryDisk::Fault fault, Run &&run, Inspect &&inspect,
                   std::size_t step = MemoryDisk::kSector)
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

class Crash : public testing::TestWithParam<Statement>
{
protected:
    void SetUp() override
    {
        m_start = diskWith(GetParam().prepare);
        Bytes &content = m_start[kFile];
        content.resize(content.size() + GetParam().bytesBehindLastPage, 7);
        m_start.endProgram();
        MemoryDisk disk = m_start;
        disk.setFault(MemoryDisk::Fault::None);
        Database database = openOn(disk);
        m_before = tablesOf(database);
        GetParam().run(database);
        m_operations = disk.operations;
        ASSERT_EQ(findings(database), "");
        m_after = tablesOf(database);
        ASSERT_FALSE(m_before == m_after);
    }

    static void runStatement(MemoryDisk &disk)
    {
        Database database = openOn(disk);
        GetParam().run(database);
    }

    static void expectTables(const Database &database, const Tables &expected,
                             const std::string &what)
    {
        EXPECT_TRUE(tablesOf(database) == expected) << what;
        EXPECT_EQ(findings(database), "") << what;
    }

    void expectOneOrTheOther(const Database &database, bool mustBeAfter, const std::string &what)
    {
        const bool isBefore = !mustBeAfter && tablesOf(database) == m_before;
        expectTables(database, isBefore ? m_before : m_after, what);
    }

    void expectOneOrTheOtherWithoutPower(MemoryDisk &disk, bool mustBeAfter,
                                         const std::string &what)
    {
        disk.losePower(++m_seed);
        expectOneOrTheOther(openOn(disk), mustBeAfter, what + ", power lost");
    }

    MemoryDisk m_start;
    Tables m_before;
    Tables m_after;
    long m_operations = 0; ///< of the statement; the last of them empties the journal
    std::uint32_t m_seed = 1;
};

TEST_P(Crash, StoppedOrTornWriteLeavesAllOrNothing)
{
    tryEveryFault(
        m_start, MemoryDisk::Fault::Stop, runStatement,
        [&](MemoryDisk &disk, bool done, const std::string &what) {
            EXPECT_TRUE(done || disk.operations < m_operations) << what;
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
    const auto runTwice = [&](MemoryDisk &disk) {
        Database database = openOn(disk);
        const auto error = errorOf([&] { GetParam().run(database); });
        if (!error)
            return;
        EXPECT_EQ(error, ErrorCode::DiskFull);
        expectTables(database, m_before, "in the program that failed");
        MemoryDisk left = disk;
        left.endProgram();
        expectTables(openOn(left), m_before, "in the file as it is left");
        GetParam().run(database);
    };
    tryEveryFault(m_start, MemoryDisk::Fault::Fail, runTwice,
                  [&](MemoryDisk &disk, bool done, const std::string &what) {
                      disk.endProgram();
                      expectTables(openOn(disk), done ? m_after : m_before, what);
                  });
}

// One trouble after another, with the statement that comes most often.
using CrashAgain = Crash;

TEST_P(CrashAgain, DiskThatStaysBrokenIsNeverSeenHalfWritten)
{
    const auto runAndReadTwice = [&](MemoryDisk &disk) {
        Database database = openOn(disk, {.cachedPages = 4});
        if (!errorOf([&] { GetParam().run(database); }))
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
        const bool isAfter = tablesOf(openOn(disk)) == m_after;
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
        survivor.table(u"Tabel").appendRow(sampleRow(100));
        MemoryFileSystem(disk).remove(kJournal); // by hand
        disk.setFault(MemoryDisk::Fault::Stop, at);
        errorOf([&] { openOn(disk).table(u"Tabel").appendRow(sampleRow(101)); });
        if (!disk.fired)
            return;
        disk.setFault(MemoryDisk::Fault::None);
        m_before = tablesOf(survivor);
        m_after = m_before;
        m_after.front().second.push_back(sampleRow(1000));
        tryEveryFault(
            disk, MemoryDisk::Fault::Stop, runStatement,
            [&](auto &&...left) { expectOneOrTheOtherWithoutPower(left...); }, kPageSize);
    }
}

INSTANTIATE_TEST_SUITE_P(Statements, Crash, testing::ValuesIn(kStatements),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(Statements, CrashAgain, testing::Values(kStatements[0]),
                         testing::PrintToStringParamName());

/// What makes a whole file: the name leads to the old file or to the new one, never to a part of
/// it. Whatever was left, `run` can begin again.
template <typename Run>
void expectOldOrNew(const MemoryDisk &start, Run &&run)
{
    const auto fileOn = [](MemoryDisk &disk) { return disk.has(kFile) ? disk[kFile] : Bytes(); };
    MemoryDisk old = start;
    MemoryDisk renewed = start;
    run(renewed);
    ASSERT_NE(fileOn(renewed), fileOn(old));
    std::uint32_t seed = 1;
    const auto inspect = [&](MemoryDisk &disk, bool done, const std::string &what) {
        MemoryDisk powerless = disk;
        powerless.losePower(++seed);
        disk.endProgram();
        for (MemoryDisk *found : {&disk, &powerless}) {
            const Bytes bytes = fileOn(*found);
            EXPECT_TRUE(bytes == fileOn(renewed) || (!done && bytes == fileOn(old))) << what;
            if (bytes.empty())
                run(*found); // nothing left over is in the way
            EXPECT_EQ(findings(openOn(*found)), "") << what;
        }
    };
    for (const auto fault : {MemoryDisk::Fault::Stop, MemoryDisk::Fault::Fail})
        tryEveryFault(start, fault, run, inspect);
}

TEST(WholeFile, CreatedDatabaseIsThereWholeOrNotAtAll)
{
    MemoryDisk disk;
    // Of a database that had this name once: nothing of it may come back in the new one.
    disk[kJournal] = Bytes(4096);
    disk.endProgram();
    expectOldOrNew(disk, [](MemoryDisk &target) {
        makeNewDatabase(kFile, kSomeDay, filesOf(target));
        EXPECT_FALSE(target.has(kJournal));
    });
}

TEST(WholeFile, CompactedDatabaseIsTheOldOrTheNewOne)
{
    const MemoryDisk start = diskWith([](Database &database) {
        samples(120)(database);
        eraseEvery(database.table(u"Tabel"), 3);
    });
    expectOldOrNew(start,
                   [](MemoryDisk &disk) { compactDatabase(kFile, kSomeDay, filesOf(disk)); });
}

} // namespace
} // namespace jet
