#include "jet/data_page.h"
#include "jet/index_page.h"
#include "jet/row_codec.h"
#include "jet/table_definition_codec.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
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
    void load()
    {
        std::ifstream file(m_path, std::ios::binary);
        m_file.assign(std::istreambuf_iterator<char>(file), {});
        // the first definition behind those of the system
        for (m_definition = 6; page(m_definition)[0] != 2;)
            ++m_definition;
    }
    void save() const
    {
        std::ofstream file(m_path, std::ios::binary);
        for (const std::uint8_t byte : m_file)
            file.put(static_cast<char>(byte));
    }
    MutablePageBytes page(PageNo number)
    {
        return MutableBytes(m_file).subspan(number * kPageSize).first<kPageSize>();
    }
    PageNo firstDataPage()
    {
        PageNo number = m_definition + 1;
        while (page(number)[0] != 1 || readU32(page(number), 4) != m_definition)
            ++number;
        return number;
    }
    TableDefinition definition()
    {
        Bytes bytes;
        appendDefinitionPage(bytes, page(m_definition));
        return parseTableDefinition(bytes);
    }
    void setDefinition(const TableDefinition &table)
    {
        const Bytes bytes = encodeTableDefinition(table);
        const std::vector<PageNo> pages{m_definition};
        writeBytes(page(m_definition), 0, splitDefinition(bytes, pages).front());
    }
    /// Bit of an inline map; for the global map 1 means free.
    void setMapBit(RowPointer map, PageNo number, bool value)
    {
        const Slot slot = slotAt(page(map.page), map.page, map.row);
        std::uint8_t &byte = page(map.page)[slot.start + 5 + number / 8];
        const auto bit = static_cast<std::uint8_t>(1u << number % 8);
        byte = static_cast<std::uint8_t>(value ? byte | bit : byte & ~bit);
    }
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
    Bytes m_file;
    PageNo m_definition = 0;
};

TableDesign twoColumns(bool indexed)
{
    TableDesign design;
    design.columns = {{u"Id", ColumnType::Long}, {u"Nume", ColumnType::Text, 100}};
    if (indexed)
        design.indexes = {{u"Prim", {{u"Id"}}, true}};
    return design;
}

/// A leaf as other programs fill it: all entries but the first without the prefix they share.
void writeCompressedLeaf(MutablePageBytes leaf, PageNo owner, const std::vector<Bytes> &entries)
{
    const auto shared = std::ranges::mismatch(entries.front(), entries.back()).in1;
    const auto prefix = shared - entries.front().begin();
    writeLeaf(leaf, owner, {}, {});
    std::size_t end = 0;
    for (const Bytes &entry : entries) {
        const ByteView stored =
            ByteView(entry).subspan(end == 0 ? 0 : static_cast<std::size_t>(prefix));
        writeBytes(leaf, kEntryArea + end, stored);
        end += stored.size();
        std::uint8_t &bits = leaf[27 + end / 8];
        bits = static_cast<std::uint8_t>(bits | 1u << end % 8);
    }
    writeU16(leaf, 2, static_cast<std::uint16_t>(kEntryAreaSize - end));
    writeU16(leaf, 24, static_cast<std::uint16_t>(prefix));
}

} // namespace

TEST_F(ForeignFile, RowThatLeftAPointerBehind)
{
    make(twoColumns(true), 3);
    load();
    const PageNo data = firstDataPage();
    const ByteView row = rowAt(page(data), data, 1);
    const Bytes image(row.begin(), row.end());
    const auto image2 = insertRow(page(data), image);
    ASSERT_TRUE(image2);
    const auto flagged = [&](std::size_t slot, unsigned flag) {
        const std::size_t place = kDataPageHeader + 2 * slot;
        writeU16(page(data), place, static_cast<std::uint16_t>(readU16(page(data), place) | flag));
    };
    flagged(*image2, SlotFlag::Moved);
    flagged(1, SlotFlag::Pointer);
    writeRowPointer(page(data), slotAt(page(data), data, 1).start, {data, *image2});
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

TEST_F(ForeignFile, ColumnDroppedAndColumnsAddedLater)
{
    TableDesign design = twoColumns(false);
    design.columns.insert(design.columns.begin() + 1, {u"Vechi", ColumnType::Double});
    make(design, 2);
    load();
    TableDefinition table = definition();
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
    setDefinition(table);
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
    const TableDefinition table = definition();
    const RealIndex &index = table.realIndexes[0];
    const auto view = [&](PageNo number) {
        auto copy = std::make_shared<PageBuffer>();
        std::ranges::copy(page(number), copy->begin());
        return IndexPage(copy, number, m_definition);
    };
    std::vector<Bytes> entries;
    for (const IndexChild &leaf : view(index.root).children()) {
        for (Bytes &entry : view(leaf.page).entries()) {
            entries.push_back(std::move(entry));
        }
        setMapBit(index.usageMap, leaf.page, false);
        setMapBit({1, 0}, leaf.page, true);
    }
    ASSERT_EQ(entries.size(), static_cast<std::size_t>(kRows));
    writeCompressedLeaf(page(index.root), m_definition, entries);
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

} // namespace jet
