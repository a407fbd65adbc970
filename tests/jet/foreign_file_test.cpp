#include "jet/compact.h"
#include "jet/format/make_definition.h"
#include "jet/store/session.h"
#include "jet/store/table_builder.h"
#include "jet/store/usage_map.h"
#include "tests/jet/file_image.h"
#include "tests/jet/new_database.h"

#include <algorithm>
#include <numeric>
#include <random>

// Forms that the engine reads and goes on working with but never writes itself: rows that left a
// pointer behind, compressed index pages, columns dropped or added after the rows were written,
// files near the bounds of the format.

namespace jet
{
namespace
{

const TableDesign kTwoColumns{
    u"T", {{u"Id", ColumnType::Long}, {u"Nume", ColumnType::Text}}, {{u"Prim", {{u"Id"}}, true}}};

/// A table T of an engine-made file whose pages a test rewrites as other programs would.
class ForeignFile : public DatabaseFile
{
protected:
    static void append(Table table, std::int32_t first, std::int32_t last, std::size_t length)
    {
        for (std::int32_t id = first; id <= last; ++id)
            table.append({{u"Id", id}, {u"Nume", Text(length, u'n')}});
    }
    void make(std::int32_t rows, const TableDesign &design = kTwoColumns)
    {
        Database database = Database::create(m_path, kSomeDay, unsynced(), {design});
        inTransaction(database, [&] { append(database.table(u"T"), 1, rows, 8); });
        m_image = FileImage(bytesOf(m_path));
    }
    /// The bytes of a row in the image.
    MutableBytes row(PageNo page, std::size_t number)
    {
        const Slot slot = slotAt(m_image.page(page), page, number);
        return m_image.page(page).subspan(slot.start, slot.length);
    }
    void save() const { writeFile(m_path, m_image.bytes()); }
    /// Opens a file of a length that comes from a hole: its pages are free ones that take no room.
    Database openWithPages(PageNo count)
    {
        make(0);
        std::filesystem::resize_file(m_path, fileOffset(count));
        return open();
    }
    /// The file is sound and mdbtools see the same numbers.
    void expectIds(std::vector<std::int32_t> ids) const
    {
        const Database database = open();
        EXPECT_EQ(findings(database), "");
        EXPECT_EQ(idsOf(database.table(u"T").records()), ids);
        EXPECT_EQ(mdbCount(m_path, "T"), std::to_string(ids.size()) + "\n");
    }

    FileImage m_image;
};

} // namespace

TEST_F(ForeignFile, RowThatLeftAPointerBehind)
{
    make(3);
    m_image.leavePointerBehind(m_image.firstDataPage(), 1);
    save();
    expectIds({1, 2, 3});

    Database database = open();
    Cursor cursor = database.table(u"T").byIndex(u"Prim");
    ASSERT_TRUE(cursor.next() && cursor.next());
    cursor.update({{u"Nume", Text(90, u'x')}});
    EXPECT_EQ(cursor.value(u"Nume"), Value(Text(90, u'x')));
    EXPECT_EQ(findings(database), "");
    cursor.erase();
    expectIds({1, 3});
}

TEST_F(ForeignFile, KeyThatAUniqueIndexHoldsTwiceIsFound)
{
    TableDesign design = kTwoColumns;
    design.indexes = {{u"Nume", {{u"Nume"}}}};
    make(2, design);
    TableDefinition table = m_image.definition();
    table.realIndexes[0].flags |= IndexFlag::Unique;
    m_image.setDefinition(table);
    save();
    Database database = open();
    EXPECT_NE(findings(database).find("a unique index holds a key twice"), std::string::npos);
    for (Cursor cursor = database.table(u"T").records(); cursor.next();)
        cursor.update({{u"Nume", Null{}}});
    EXPECT_EQ(findings(database), "");
}

TEST_F(ForeignFile, CountOfRowsThatItsPagesCannotHoldIsDamage)
{
    make(3);
    m_image.page(m_image.definitionPage())[kRowCountOffset + 3] = 0x7F;
    save();
    const Database database = open();
    const Table table = database.table(u"T");
    EXPECT_EQ(errorOf([&] { table.recordCount(); }), ErrorCode::Damaged);
    EXPECT_EQ(findings(database), "page " + std::to_string(m_image.definitionPage()) +
                                      ": The database is damaged: a table counts 2130706435 rows, "
                                      "more than its pages hold\n");
    EXPECT_EQ(idsOf(table.sortedBy(u"Nume")), (std::vector<std::int32_t>{1, 2, 3}));
}

TEST_F(ForeignFile, MapOfFreePagesWhoseStartWasMovedPastThoseInUse)
{
    make(200);
    const MutableBytes map = row(kGlobalMapPage, 0);
    constexpr PageNo kStart = 16;
    writeU32(map, 1, kStart);
    std::ranges::rotate(map.subspan(5), map.begin() + 5 + kStart / 8);
    std::ranges::fill(map.last(kStart / 8), std::uint8_t{0xFF}); // nothing is there yet
    save();
    Database database = open();
    EXPECT_EQ(findings(database), "");
    inTransaction(database, [&] { append(database.table(u"T"), 201, 40000, 100); });
    EXPECT_EQ(findings(database), "");
    EXPECT_EQ(mdbCount(m_path, "T"), "40000\n");
}

TEST_F(ForeignFile, PageBeforeTheMapOfFreePagesIsGivenBack)
{
    make(200);
    const MutableBytes map = row(kGlobalMapPage, 0);
    writeU32(map, 1, 512);
    std::ranges::fill(map.subspan(5), std::uint8_t{0xFF});
    save();
    Database database = open();
    database.dropTable(u"T");
    EXPECT_EQ(findings(database), "");
    const auto size = std::filesystem::file_size(m_path);
    database.createTable(tabelDesign(), kSomeDay);
    EXPECT_EQ(findings(database), "");
    EXPECT_EQ(std::filesystem::file_size(m_path), size);
}

TEST_F(ForeignFile, MapOfFreePagesThatCannotGrowIsRefused)
{
    make(3);
    const MutablePageBytes page = m_image.page(kGlobalMapPage);
    const ByteView map = rowAt(page, kGlobalMapPage, 0);
    const Bytes shortMap(map.begin(), map.begin() + 5 + 8); // 64 pages
    initDataPage(page, 1);
    insertRow(page, shortMap);
    insertRow(page, Bytes(freeBytes(page) - 2 - 10));
    save();
    Database database = open();
    EXPECT_EQ(errorOf([&] {
                  inTransaction(database, [&] { append(database.table(u"T"), 4, 4000, 100); });
              }),
              ErrorCode::Damaged);
    expectIds({1, 2, 3});
}

TEST_F(ForeignFile, MapOfFreePagesOutgrowsItsPage)
{
    constexpr PageNo kPages = kPagesPerBitmap + 100;
    Database database = openWithPages(kPages);
    Table table = database.table(u"T");
    inTransaction(database, [&] { append(table, 1, 10000, 255); });
    const auto size = std::filesystem::file_size(m_path);
    EXPECT_GT(size, fileOffset(kPages));
    EXPECT_EQ(findings(database), "");
    EXPECT_TRUE(exported(table.records()) == mdbExport(m_path, "T"));

    table.deleteAll();
    EXPECT_EQ(findings(database), "");
    inTransaction(database, [&] { append(table, 1, 10000, 255); });
    EXPECT_EQ(std::filesystem::file_size(m_path), size);
    database.dropTable(u"T");
    EXPECT_EQ(findings(database), "");
}

TEST_F(ForeignFile, StatementThatWouldPassTheLargestSizeIsRefused)
{
    constexpr PageNo kMost = 0x80000;
    Database database = openWithPages(kMost);
    Table table = database.table(u"T");
    append(table, 1, 100, 255);
    EXPECT_EQ(errorOf([&] { inTransaction(database, [&] { append(table, 101, 10000, 255); }); }),
              ErrorCode::DiskFull);
    EXPECT_EQ(table.recordCount(), 100U);
    EXPECT_EQ(std::filesystem::file_size(m_path), fileOffset(kMost));
    append(table, 101, 101, 255);
    EXPECT_EQ(table.recordCount(), 101U);
}

TEST_F(ForeignFile, BlocksOfTheDatabaseProgramAreReadAndNeverLost)
{
    make(3);
    const Bytes block(3992, 7);
    const Text name = u"MSysAccessObjects";
    const auto change = [&](auto &&work) {
        Session session(makeSystemFiles(), m_path, unsynced());
        session.begin();
        work(session);
        session.commit();
    };
    change([&](Session &session) {
        TableDefinition blocks = makeDefinition({name, {{u"Data", ColumnType::Long}, {u"ID"}}, {}});
        blocks.columns[0].type = ColumnType::Block;
        layOutColumns(blocks);
        const PageNo page = buildTable(session.pager(), blocks);
        session.catalog().add(name, page, kSomeDay);
        session.tableAt(page)->insert({block, 1});
    });
    const auto expectRefused = [&] {
        EXPECT_EQ(findings(open()), "");
        EXPECT_EQ(rowsOf(open().table(name).records()), (std::vector<Row>{{block, 1}}));
        EXPECT_EQ(errorOf([&] { compactDatabase(m_path, kSomeDay); }), ErrorCode::NotSupported);
    };
    expectRefused(); // no table that the engine could make
    change([&](Session &session) {
        const auto entry = session.catalog().find(name);
        TableStore &objects = *session.table(u"MSysObjects");
        const std::size_t flags = objects.columnNamed(u"Flags").value();
        Row values = objects.read(entry->row);
        values[flags] = static_cast<std::int32_t>(kSystemObjectFlags);
        std::vector<bool> changed(values.size());
        changed[flags] = true;
        static_cast<void>(objects.update(entry->row, values, changed));
    });
    expectRefused(); // no table that a new database has
    open().table(name).deleteAll();
    compactDatabase(m_path, kSomeDay);
    expectIds({1, 2, 3});
}

TEST_F(ForeignFile, ColumnDroppedAndColumnsAddedLater)
{
    TableDesign design = kTwoColumns;
    design.indexes.clear();
    design.columns.insert(design.columns.begin() + 1, {u"Vechi", ColumnType::Double});
    make(2, design);
    TableDefinition table = m_image.definition();
    table.columns.erase(table.columns.begin() + 1);
    ColumnDefinition added = column(u"Nou", ColumnType::Memo);
    added.number = table.maxColumns++;
    added.variableIndex = table.variableColumns++;
    table.columns.push_back(added);
    added = column(u"Da", ColumnType::Boolean, 1);
    added.number = table.maxColumns++;
    added.flags = ColumnFlag::FixedLength | ColumnFlag::Nullable;
    table.columns.push_back(added);
    // memo columns need their maps: of the table's own, as no long value is ever put there
    table.longValueMaps = {{table.columns[2].number, table.ownedPages, {}}};
    m_image.setDefinition(table);
    save();

    EXPECT_EQ(mdbExport(m_path, "T"), "1,nnnnnnnn,,0\n2,nnnnnnnn,,0\n");
    Database database = open();
    Cursor cursor = database.table(u"T").records();
    ASSERT_TRUE(cursor.next());
    EXPECT_EQ(cursor.row(), (Row{1, Text(u"nnnnnnnn"), Null{}, false}));
    cursor.update({{u"Nou", Text(u"scurt")}, {u"Da", true}});
    EXPECT_EQ(cursor.row(), (Row{1, Text(u"nnnnnnnn"), Text(u"scurt"), true}));
    EXPECT_EQ(mdbExport(m_path, "T"), "1,nnnnnnnn,scurt,1\n2,nnnnnnnn,,0\n");
}

TEST_F(ForeignFile, DeletingAllRowsGivesNoPageOfAnotherOwnerBack)
{
    make(2);
    m_image.setMapBit(m_image.definition().ownedPages, m_image.definitionPage(), true);
    save();
    EXPECT_EQ(errorOf([&] { open().table(u"T").deleteAll(); }), ErrorCode::Damaged);
}

TEST_F(ForeignFile, CompressedLeafFullerThanThreeOfOurs)
{
    constexpr std::int32_t kRows = 598;
    make(kRows);
    const TableDefinition table = m_image.definition();
    const RealIndex &index = table.realIndexes[0];
    std::vector<Bytes> entries;
    for (const IndexChild &leaf : m_image.indexPage(index.root).children()) {
        std::ranges::move(m_image.indexPage(leaf.page).entries(), std::back_inserter(entries));
        m_image.setMapBit(index.usageMap, leaf.page, false);
        m_image.setMapBit({kGlobalMapPage, 0}, leaf.page, true);
    }
    m_image.writeCompressedLeaf(index.root, entries);
    save();
    std::vector<std::int32_t> ids(kRows);
    std::iota(ids.begin(), ids.end(), 1);
    expectIds(ids);

    // entries before, between and behind those of the full page, then all away in any order
    Database database = open();
    Table t = database.table(u"T");
    for (const std::int32_t id : {0, -70000, kRows + 1, 70000}) {
        t.append(Assignments{{u"Id", id}});
        EXPECT_EQ(findings(database), "") << id;
        ids.push_back(id);
    }
    std::ranges::sort(ids);
    EXPECT_EQ(idsOf(t.byIndex(u"Prim")), ids);
    std::ranges::shuffle(ids, std::mt19937(3));
    inTransaction(database, [&] {
        Cursor cursor = t.byIndex(u"Prim");
        for (const Value id : ids) {
            ASSERT_TRUE(cursor.seek(std::span(&id, 1)));
            cursor.erase();
        }
    });
    expectIds({});
}

TEST_F(ForeignFile, KeyThatOnlyTheOtherProgramCanWorkOut)
{
    TableDesign design = kTwoColumns;
    design.indexes.push_back({u"Nume", {{u"Nume"}}});
    make(4, design);
    for (const std::size_t number : {1U, 2U})
        *std::ranges::find(row(m_image.firstDataPage(), number), std::uint8_t{'n'}) = 0xB5; // micro
    save();
    expectIds({1, 2, 3, 4});

    Database database = open();
    Table table = database.table(u"T");
    EXPECT_EQ(errorOf([&] { table.appendRow({5, u"µ"}); }), ErrorCode::NotSupported);
    Cursor cursor = table.byIndex(u"Nume");
    ASSERT_TRUE(cursor.next() && cursor.next());
    ASSERT_EQ(cursor.value(u"Nume"), Value(Text(u"µnnnnnnn")));
    cursor.update({{u"Id", 20}});
    EXPECT_EQ(cursor.row(), (Row{20, Text(u"µnnnnnnn")}));
    ASSERT_TRUE(cursor.next());
    cursor.erase();
    expectIds({1, 20, 4});
    cursor.first();
    ASSERT_TRUE(cursor.next());
    cursor.update({{u"Nume", Text(90, u'z')}});
    table.append({{u"Id", 5}, {u"Nume", u"a"}});
    expectIds({1, 20, 4, 5});
    EXPECT_EQ(idsOf(table.byIndex(u"Nume")), (std::vector<std::int32_t>{5, 1, 4, 20}));
}

} // namespace jet
