#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace jet
{
namespace
{

TEST(Database, AppendsKeepIndexCountAndReadersInAgreement)
{
    const TemporaryFolder folder;
    const auto path = folder / "autoclava1.mdb";
    Database database = Database::create(path, kSomeDay, unsynced());
    Table table = database.createTable(tabelDesign(), kSomeDay);
    EXPECT_EQ(findings(database), "");
    appendSamples(table, 1, 3000);

    EXPECT_EQ(table.recordCount(), 3000U);
    EXPECT_EQ(errorOf([&] { table.appendRow(sampleRow(1500)); }), ErrorCode::DuplicateKey);
    EXPECT_EQ(findings(database), "");
    EXPECT_EQ(mdbTables(path), "Tabel\n");
    EXPECT_EQ(mdbCount(path, "Tabel"), "3000\n");
    const std::vector<Row> rows = rowsOf(table.records());
    ASSERT_EQ(rows.size(), 3000U);
    EXPECT_EQ(rows[2344], sampleRow(2345));
    const std::string exported = mdbExport(path, "Tabel");
    EXPECT_EQ(std::ranges::count(exported, '\n'), 3000);
}

TEST(Database, AutonumbersGoOnAfterNegativeNumbersAndEndAtTheGreatest)
{
    const TemporaryFolder folder;
    Database database = Database::create(folder / "t.mdb", kSomeDay, unsynced());
    TableDesign design;
    design.name = u"T";
    design.columns = {{u"Nr", ColumnType::Long, 0, true}};
    design.indexes = {{u"Nr", {{u"Nr"}}, true}};
    Table table = database.createTable(design, kSomeDay);
    const std::int32_t greatest = std::numeric_limits<std::int32_t>::max();
    for (const Value &number : {Value(), Value(-2), Value(), Value(), Value(greatest)})
        table.appendRow({number});
    EXPECT_EQ(errorOf([&] { table.appendRow({Value()}); }), ErrorCode::NotSupported);
    EXPECT_EQ(idsOf(table.records()), (std::vector<std::int32_t>{1, -2, 2, 3, greatest}));
}

TEST(Database, RowWhoseKeyIsTooLongIsRefusedAlone)
{
    const TemporaryFolder folder;
    Database database = Database::create(folder / "t.mdb", kSomeDay, unsynced());
    TableDesign design;
    design.name = u"T";
    design.indexes = {{u"Toate", {}}};
    for (const char16_t name : Text(u"ABCDEFGH")) {
        design.columns.push_back({Text(1, name), ColumnType::Binary, 255});
        design.indexes.front().columns.push_back({Text(1, name)});
    }
    Table table = database.createTable(design, kSomeDay);
    inTransaction(database, [&] {
        EXPECT_EQ(errorOf([&] { table.appendRow(Row(8, Bytes(255, 1))); }),
                  ErrorCode::RecordTooLarge);
        table.appendRow(Row(8, Bytes(9, 1)));
    });
    EXPECT_EQ(table.recordCount(), 1U);
}

TEST(Database, NamesThatTheDatabaseProgramWouldNotTakeAreRefused)
{
    const TemporaryFolder folder;
    Database database = Database::create(folder / "t.mdb", kSomeDay, unsynced());
    database.createTable(tabelDesign(), kSomeDay);
    TableDesign longest = tabelDesign(Text(64, u'n'));
    longest.columns.front().name = longest.indexes.front().columns.front().column = longest.name;
    database.createTable(longest, kSomeDay);
    for (const Text &name : {Text(), Text(65, u'n'), Text(u" a"), Text(u"a.b"), Text(u"a!"),
                             Text(u"[a]"), Text(u"a`"), Text(u"a\n")}) {
        const auto code = [&](TableDesign design) {
            return errorOf([&] { database.createTable(design, kSomeDay); });
        };
        TableDesign column = tabelDesign(u"Nou");
        column.columns.back().name = name;
        TableDesign index = tabelDesign(u"Nou");
        index.indexes.front().name = name;
        for (const auto &error : {code(tabelDesign(name)), code(column), code(index),
                                  errorOf([&] { database.renameTable(u"Tabel", name, kSomeDay); })})
            EXPECT_EQ(error, ErrorCode::InvalidName) << toUtf8(name);
    }
    EXPECT_EQ(database.tables(), (std::vector<Text>{u"Tabel", longest.name}));
    EXPECT_EQ(findings(database), "");
}

} // namespace
} // namespace jet
