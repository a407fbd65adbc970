#include "jet/database.h"

#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <iostream>

// The example of docs/jet-engine.md, letter for letter.

std::uint32_t storeReadings(const std::filesystem::path &path, jet::DateTime now)
{
    jet::Database database = jet::Database::create(path, now);
    jet::TableDesign design{u"Readings",
                            {{u"Id", jet::ColumnType::Long}, {u"Value", jet::ColumnType::Double}},
                            {{u"PrimaryKey", {{u"Id"}}, true}}};
    jet::Table table = database.createTable(design, now);
    jet::Transaction transaction(database);
    table.append({{u"Id", 1}, {u"Value", 121.5}});
    table.append({{u"Id", 2}, {u"Value", u"134,25"}}); // texts are converted
    transaction.commit();
    for (jet::Cursor newest = table.sortedBy(u"Id", jet::Order::Descending); newest.next();)
        std::cout << std::get<double>(newest.value(u"Value")) << '\n';
    return table.recordCount();
}

namespace jet
{
namespace
{

TEST(Example, OfTheManualWorks)
{
    const TemporaryFolder folder;
    testing::internal::CaptureStdout();
    EXPECT_EQ(storeReadings(folder / "readings.mdb", kSomeDay), 2U);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "134.25\n121.5\n");
    EXPECT_EQ(mdbExport(folder / "readings.mdb", "Readings"), "1,121.5\n2,134.25\n");
}

} // namespace
} // namespace jet
