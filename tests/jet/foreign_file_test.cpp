#include "jet/compact.h"
#include "jet/format/make_definition.h"
#include "jet/store/session.h"
#include "jet/store/table_builder.h"
#include "tests/jet/file_image.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

// Forms that the engine reads and goes on working with but never writes itself: rows that left a
// pointer behind, compressed index pages, columns dropped or added after the rows were written.

namespace jet
{
namespace
{

/// A table T of an engine-made file whose pages a test rewrites as other programs would.
class ForeignFile : public ::testing::Test
{
protected:
    void make(TableDesign design, std::int32_t rows)
    {
        design.name = u"T";
        Database database = Database::create(m_path, kSomeDay, unsynced());
        Table table = database.createTable(design, kSomeDay);
        Transaction transaction(database);
        for (std::int32_t id = 1; id <= rows; ++id)
            table.append({{u"Id", id}, {u"Nume", Text(8, u'n')}});
        transaction.commit();
    }
    void load() { m_image = FileImage(bytesOf(m_path)); }
    void save() const { writeFile(m_path, m_image.bytes()); }
    Database open() const { return Database::open(m_path, unsynced()); }
    /// The file is sound and mdbtools see the same numbers.
    void expectIds(std::vector<std::int32_t> ids) const
    {
        const Database database = open();
        EXPECT_EQ(findings(database), "");
        EXPECT_EQ(idsOf(database.table(u"T").records()), ids);
        EXPECT_EQ(mdbCount(m_path, "T"), std::to_string(ids.size()) + "\n");
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "t.mdb";
    FileImage m_image;
};

TableDesign twoColumns(bool indexed)
{
    TableDesign design;
    design.columns = {{u"Id", ColumnType::Long}, {u"Nume", ColumnType::Text, 100}};
    if (indexed)
        design.indexes = {{u"Prim", {{u"Id"}}, true}};
    return design;
}

} // namespace

TEST_F(ForeignFile, RowThatLeftAPointerBehind)
{
    make(twoColumns(true), 3);
    load();
    m_image.leavePointerBehind(m_image.firstDataPage(), 1);
    save();
    expectIds({1, 2, 3});

    Database database = open();
    Cursor cursor = database.table(u"T").byIndex(u"Prim");
    const Value two = 2;
    ASSERT_TRUE(cursor.seek(std::span(&two, 1)));
    cursor.update({{u"Nume", Text(90, u'x')}});
    EXPECT_EQ(cursor.value(u"Nume"), Value(Text(90, u'x')));
    EXPECT_EQ(findings(database), "");
    cursor.erase();
    expectIds({1, 3});
}

TEST_F(ForeignFile, KeyThatAUniqueIndexHoldsTwiceIsFound)
{
    TableDesign design = twoColumns(false);
    design.indexes = {{u"Nume", {{u"Nume"}}}};
    make(design, 2);
    load();
    TableDefinition table = m_image.definition();
    table.realIndexes[0].flags |= IndexFlag::Unique;
    m_image.setDefinition(table);
    save();
    EXPECT_NE(findings(open()).find("a unique index holds a key twice"), std::string::npos);

    Database database = open();
    for (Cursor cursor = database.table(u"T").records(); cursor.next();)
        cursor.update({{u"Nume", Null{}}});
    EXPECT_EQ(findings(database), "");
}

TEST_F(ForeignFile, CountOfRowsThatItsPagesCannotHoldIsDamage)
{
    make(twoColumns(true), 3);
    load();
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
    make(twoColumns(true), 200);
    load();
    const RowPointer map{kGlobalMapPage, 0};
    const Slot row = slotAt(m_image.page(map.page), map.page, map.row);
    const MutableBytes bytes = m_image.page(map.page).subspan(row.start, row.length);
    constexpr PageNo kStart = 16;
    writeU32(bytes, 1, kStart);
    std::ranges::rotate(bytes.subspan(5), bytes.begin() + 5 + kStart / 8);
    std::ranges::fill(bytes.last(kStart / 8), std::uint8_t{0xFF}); // nothing is there yet
    save();
    Database database = open();
    EXPECT_EQ(findings(database), "");

    Table table = database.table(u"T");
    inTransaction(database, [&] {
        for (std::int32_t id = 201; id <= 40000; ++id)
            table.append({{u"Id", id}, {u"Nume", Text(100, u'n')}});
    });
    EXPECT_EQ(findings(database), "");
    EXPECT_EQ(mdbCount(m_path, "T"), "40000\n");
}

TEST_F(ForeignFile, PageBeforeTheMapOfFreePagesIsGivenBack)
{
    make(twoColumns(true), 200);
    load();
    const Slot row = slotAt(m_image.page(kGlobalMapPage), kGlobalMapPage, 0);
    const MutableBytes bytes = m_image.page(kGlobalMapPage).subspan(row.start, row.length);
    writeU32(bytes, 1, 512);
    std::ranges::fill(bytes.subspan(5), std::uint8_t{0xFF});
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
    make(twoColumns(true), 3);
    load();
    const MutablePageBytes page = m_image.page(kGlobalMapPage);
    const ByteView map = rowAt(page, kGlobalMapPage, 0);
    const Bytes shortMap(map.begin(), map.begin() + 5 + 8); // 64 pages
    initDataPage(page, 1);
    insertRow(page, shortMap);
    insertRow(page, Bytes(freeBytes(page) - 2 - 10));
    save();
    Database database = open();
    Table table = database.table(u"T");
    EXPECT_EQ(errorOf([&] {
                  inTransaction(database, [&] {
                      for (std::int32_t id = 4; id <= 4000; ++id)
                          table.append({{u"Id", id}, {u"Nume", Text(100, u'n')}});
                  });
              }),
              ErrorCode::Damaged);
    expectIds({1, 2, 3});
}

TEST_F(ForeignFile, BlocksOfTheDatabaseProgramAreReadAndNeverLost)
{
    make(twoColumns(true), 3);
    const Bytes block(3992, 7);
    {
        Session session(makeSystemFiles(), m_path, unsynced());
        session.begin();
        TableDesign design{u"MSysAccessObjects", {{u"Data", ColumnType::Long}, {u"ID"}}, {}};
        TableDefinition blocks = makeDefinition(design);
        blocks.columns[0].type = ColumnType::Block;
        layOutColumns(blocks);
        const PageNo page = buildTable(session.pager(), blocks);
        session.catalog().add(design.name, page, kSomeDay);
        session.tableAt(page)->insert({block, 1});
        session.commit();
    }
    const auto expectRefused = [&] {
        {
            const Database database = open();
            EXPECT_EQ(findings(database), "");
            EXPECT_EQ(rowsOf(database.table(u"MSysAccessObjects").records()),
                      (std::vector<Row>{{block, 1}}));
        }
        EXPECT_EQ(errorOf([&] { compactDatabase(m_path, kSomeDay); }), ErrorCode::NotSupported);
    };
    expectRefused(); // no table that the engine could make
    {
        Session session(makeSystemFiles(), m_path, unsynced());
        session.begin();
        const auto entry = session.catalog().find(u"MSysAccessObjects");
        TableStore &objects = *session.table(u"MSysObjects");
        const std::size_t flags = objects.columnNamed(u"Flags").value();
        Row values = objects.read(entry->row);
        values[flags] = static_cast<std::int32_t>(kSystemObjectFlags);
        std::vector<bool> changed(values.size());
        changed[flags] = true;
        static_cast<void>(objects.update(entry->row, values, changed));
        session.commit();
    }
    expectRefused(); // no table that a new database has
    open().table(u"MSysAccessObjects").deleteAll();
    compactDatabase(m_path, kSomeDay);
    expectIds({1, 2, 3});
}

TEST_F(ForeignFile, ColumnDroppedAndColumnsAddedLater)
{
    TableDesign design = twoColumns(false);
    design.columns.insert(design.columns.begin() + 1, {u"Vechi", ColumnType::Double});
    make(design, 2);
    load();
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

    EXPECT_EQ(mdbExport(m_path, "T"), "1,\"nnnnnnnn\",,0\n2,\"nnnnnnnn\",,0\n");
    Database database = open();
    Cursor cursor = database.table(u"T").records();
    ASSERT_TRUE(cursor.next());
    EXPECT_EQ(cursor.row(), (Row{1, Text(u"nnnnnnnn"), Null{}, false}));
    cursor.update({{u"Nou", Text(u"scurt")}, {u"Da", true}});
    EXPECT_EQ(cursor.row(), (Row{1, Text(u"nnnnnnnn"), Text(u"scurt"), true}));
    EXPECT_EQ(mdbExport(m_path, "T"), "1,\"nnnnnnnn\",\"scurt\",1\n2,\"nnnnnnnn\",,0\n");
}

TEST_F(ForeignFile, CompressedLeafFullerThanThreeOfOurs)
{
    constexpr std::int32_t kRows = 598;
    make(twoColumns(true), kRows);
    load();
    const TableDefinition table = m_image.definition();
    const RealIndex &index = table.realIndexes[0];
    std::vector<Bytes> entries;
    for (const IndexChild &leaf : m_image.indexPage(index.root).children()) {
        for (Bytes &entry : m_image.indexPage(leaf.page).entries()) {
            entries.push_back(std::move(entry));
        }
        m_image.setMapBit(index.usageMap, leaf.page, false);
        m_image.setMapBit({1, 0}, leaf.page, true);
    }
    ASSERT_EQ(entries.size(), static_cast<std::size_t>(kRows));
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
    Cursor cursor = t.byIndex(u"Prim");
    Transaction transaction(database);
    for (const Value id : ids) {
        ASSERT_TRUE(cursor.seek(std::span(&id, 1)));
        cursor.erase();
    }
    transaction.commit();
    expectIds({});
}

TEST_F(ForeignFile, KeyThatOnlyTheOtherProgramCanWorkOut)
{
    TableDesign design = twoColumns(true);
    design.indexes.push_back({u"Nume", {{u"Nume"}}});
    make(design, 4);
    load();
    const PageNo data = m_image.firstDataPage();
    for (const std::size_t slot : {1U, 2U}) {
        const Slot row = slotAt(m_image.page(data), data, slot);
        const MutableBytes bytes = m_image.page(data).subspan(row.start, row.length);
        *std::ranges::find(bytes, std::uint8_t{'n'}) = 0xB5; // a micro sign
    }
    save();
    expectIds({1, 2, 3, 4});

    Database database = open();
    Table table = database.table(u"T");
    EXPECT_EQ(errorOf([&] {
                  table.append(Assignments{{u"Nume", u"µ"}});
              }),
              ErrorCode::NotSupported);
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
