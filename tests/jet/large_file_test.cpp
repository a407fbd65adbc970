#include "jet/format/page.h"
#include "tests/jet/new_database.h"

// Files near the bounds of the format and of the disk. The length comes from a hole in the file:
// its pages are free ones that take no room.

namespace jet
{
namespace
{

class LargeFile : public DatabaseFile
{
protected:
    Database withPages(PageNo count)
    {
        const TableDesign design{u"T", {{u"Id"}, {u"Nume", ColumnType::Text}}, {}};
        Database::create(m_path, kSomeDay, unsynced(), {design});
        std::filesystem::resize_file(m_path, fileOffset(count));
        return open();
    }
    /// Rows of which seven fill a page.
    static void append(Table table, std::int32_t rows)
    {
        for (std::int32_t id = 1; id <= rows; ++id)
            table.appendRow({id, Text(255, u'ș')});
    }
};

TEST_F(LargeFile, MapOfFreePagesOutgrowsItsPage)
{
    constexpr PageNo kPages = kPageSize * 8 + 100; // more than one page has bits for
    Database database = withPages(kPages);
    Table table = database.table(u"T");
    inTransaction(database, [&] { append(table, 5000); });
    EXPECT_GT(std::filesystem::file_size(m_path), fileOffset(kPages));
    EXPECT_EQ(findings(database), "");
    EXPECT_TRUE(exported(table.records()) == mdbExport(m_path, "T"));

    const auto size = std::filesystem::file_size(m_path);
    table.deleteAll();
    EXPECT_EQ(findings(database), "");
    inTransaction(database, [&] { append(table, 5000); });
    EXPECT_EQ(std::filesystem::file_size(m_path), size);
    database.dropTable(u"T");
    EXPECT_EQ(findings(database), "");
}

TEST_F(LargeFile, StatementThatWouldPassTheFormatsLimitIsRefused)
{
    Database database = withPages(0x80000);
    Table table = database.table(u"T");
    append(table, 100);
    EXPECT_EQ(errorOf([&] { inTransaction(database, [&] { append(table, 5000); }); }),
              ErrorCode::DiskFull);
    EXPECT_EQ(table.recordCount(), 100U);
    EXPECT_EQ(std::filesystem::file_size(m_path), fileOffset(0x80000));
    append(table, 1);
    EXPECT_EQ(table.recordCount(), 101U);
}

} // namespace
} // namespace jet
