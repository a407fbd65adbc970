#include "tests/jet/memory_disk.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iostream>

// A program may end, a disk fail or the power go at any write of a statement: the file then is as
// it was before the statement or as it is after it, and everything in it fits together.

namespace jet
{
namespace
{

constexpr const char *kFile = "folder/autoclava1.mdb";

struct Scenario {
    const char *name;
    std::function<void(Database &)> prepare;
    std::function<void(Database &)> statement;
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

void prepareTabel(Database &database, std::int32_t rows)
{
    Transaction transaction(database);
    Table table = database.createTable(tabelDesign(), kSomeDay);
    appendSamples(table, 1, rows);
    transaction.commit();
}

void repair(Database &database)
{
    Transaction transaction(database);
    Table old = database.table(u"Tabel");
    TableDesign design = old.design();
    design.name = u"Tabel2";
    Table copy = database.createTable(design, kSomeDay);
    for (Row &row : rowsOf(old.records()))
        copy.appendRow(std::move(row));
    copy.appendRow(sampleRow(static_cast<std::int32_t>(copy.recordCount()) + 1));
    database.dropTable(u"Tabel");
    database.renameTable(u"Tabel2", u"Tabel", kSomeDay);
    transaction.commit();
}

const Scenario kScenarios[] = {
    {"append", [](Database &database) { prepareTabel(database, 20); },
     [](Database &database) { database.table(u"Tabel").appendRow(sampleRow(21)); }},
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
    {"copy, drop and rename", [](Database &database) { prepareTabel(database, 60); }, repair},
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

MemoryDisk emptyDisk()
{
    const TemporaryFolder folder;
    const auto path = folder / "empty.mdb";
    Database::create(path, kSomeDay);
    std::ifstream file(path, std::ios::binary);
    MemoryDisk disk;
    MemoryDisk::Entry &entry = disk.files[kFile];
    entry.content.assign(std::istreambuf_iterator<char>(file), {});
    entry.durable = entry.content;
    return disk;
}

Database openOn(MemoryDisk &disk)
{
    return Database::open(kFile, {}, std::make_unique<MemoryFileSystem>(disk));
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

class Crash : public testing::TestWithParam<Scenario>
{
protected:
    void SetUp() override
    {
        m_start = emptyDisk();
        {
            Database database = openOn(m_start);
            GetParam().prepare(database);
        }
        m_start.endProgram();
        m_start.removed.clear();
        MemoryDisk disk = m_start;
        Database database = openOn(disk);
        m_before = contentOf(database);
        GetParam().statement(database);
        ASSERT_EQ(findings(database), "");
        m_after = contentOf(database);
        ASSERT_FALSE(m_before == m_after);
    }

    /// Runs the statement on a disk with a fault; true when it was carried out.
    static bool runStatement(MemoryDisk &disk)
    {
        try {
            Database database = openOn(disk);
            GetParam().statement(database);
            return true;
        } catch (const Error &) {
            return false;
        }
    }

    void expectOneOrTheOther(MemoryDisk disk, bool mustBeAfter, const std::string &what)
    {
        ++m_states;
        const Database database = openOn(disk);
        const Content content = contentOf(database);
        EXPECT_TRUE(content == m_after || (!mustBeAfter && content == m_before)) << what;
        EXPECT_EQ(findings(database), "") << what;
    }

    /// Calls `inspect` with the disk after each operation in turn was hit, writes at each sector.
    template <typename Inspect>
    void tryEveryFault(MemoryDisk::Fault fault, Inspect &&inspect)
    {
        for (long at = 1;; ++at) {
            std::size_t length = 0;
            for (std::size_t kept = 0; kept <= length; kept += 512) {
                MemoryDisk disk = m_start;
                disk.setFault(fault, at, kept);
                const bool done = runStatement(disk);
                if (!disk.fired)
                    return;
                length = disk.lastWrite;
                inspect(disk, done,
                        "operation " + std::to_string(at) + ", " + std::to_string(kept) + " bytes");
            }
        }
    }

    MemoryDisk m_start;
    Content m_before;
    Content m_after;
    long m_states = 0;
};

TEST_P(Crash, StoppedOrTornWriteLeavesAllOrNothing)
{
    tryEveryFault(MemoryDisk::Fault::Stop,
                  [&](MemoryDisk &disk, bool done, const std::string &what) {
                      disk.endProgram();
                      expectOneOrTheOther(disk, done, what);
                  });
    std::cout << "states after a stopped or torn write: " << m_states << '\n';
}

TEST_P(Crash, LostPowerLeavesAllOrNothing)
{
    std::uint32_t seed = 1;
    tryEveryFault(MemoryDisk::Fault::Stop,
                  [&](MemoryDisk &disk, bool done, const std::string &what) {
                      disk.losePower(++seed);
                      expectOneOrTheOther(disk, done, what + ", power lost");
                  });
    std::cout << "states after a loss of power: " << m_states << '\n';
}

TEST_P(Crash, FailedWriteKeepsOldContent)
{
    tryEveryFault(MemoryDisk::Fault::Fail,
                  [&](MemoryDisk &disk, bool done, const std::string &what) {
                      disk.endProgram();
                      ++m_states;
                      const Database database = openOn(disk);
                      EXPECT_TRUE(contentOf(database) == (done ? m_after : m_before)) << what;
                      EXPECT_EQ(findings(database), "") << what;
                  });
    std::cout << "states after a failed write: " << m_states << '\n';
}

INSTANTIATE_TEST_SUITE_P(Statements, Crash, testing::ValuesIn(kScenarios),
                         [](const auto &scenario) {
                             std::string name = scenario.param.name;
                             std::erase_if(name, [](char c) { return c == ' ' || c == ','; });
                             return name;
                         });

} // namespace
} // namespace jet
