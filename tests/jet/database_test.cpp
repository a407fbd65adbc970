#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <algorithm>

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

} // namespace
} // namespace jet
