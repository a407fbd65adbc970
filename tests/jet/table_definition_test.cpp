#include "jet/format/header_page.h"
#include "jet/format/make_definition.h"
#include "jet/format/table_definition_codec.h"
#include "jet/store/system_tables.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <utility>

namespace jet
{

TEST(TableDefinitionCodec, WritesTheDumpOfARealTable)
{
    TableDefinition table = tabelDefinition();
    table.rowCount = 2;
    table.realIndexes[0].uniqueEntries = 2;
    const Bytes definition = encodeTableDefinition(table);
    const Bytes page = splitDefinition(definition, std::array<PageNo, 1>{16}).front();
    const std::pair<std::size_t, const char *> lines[] = {
        {0x000, "02 01 C3 0D 00 00 00 00 35 02 00 00 59 06 00 00"},
        {0x010, "02 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00"},
        {0x020, "00 00 00 00 00 00 00 00 4E 0A 00 01 00 0A 00 01"},
        {0x030, "00 00 00 01 00 00 00 00 11 00 00 01 11 00 00 00"},
        {0x040, "00 00 00 02 00 00 00 00 00 00 00 04 59 06 00 00"},
        {0x050, "00 00 00 00 00 00 09 04 00 00 03 00 00 00 00 00"},
        {0x060, "00 00 04 00 07 59 06 00 00 01 00 00 00 01 00 09"},
        {0x0F0, "03 00 00 00 00 00 2C 00 08 00 0A 59 06 00 00 07"},
        {0x100, "00 00 00 07 00 09 04 00 00 02 00 00 00 00 00 00"},
        {0x110, "00 14 00 08 59 06 00 00 08 00 01 00 08 00 09 04"},
        {0x120, "00 00 03 00 00 00 00 00 34 00 08 00 08 59 06 00"},
        {0x140, "00 3C 00 08 00 04 00 49 00 64 00 0E 00 53 00 65"},
        {0x1C0, "00 61 00 06 00 4F 00 72 00 61 00 83 07 00 00 00"},
        {0x1D0, "00 01 FF FF 00 FF FF 00 FF FF 00 FF FF 00 FF FF"},
        {0x1E0, "00 FF FF 00 FF FF 00 FF FF 00 FF FF 00 02 11 00"},
        {0x1F0, "00 12 00 00 00 00 00 00 00 89 00 00 00 00 00 59"},
        {0x200, "06 00 00 00 00 00 00 00 00 00 00 00 FF FF FF FF"},
        {0x210, "00 00 00 00 04 04 01 00 00 00 00 16 00 49 00 6E"},
        {0x230, "00 72 00 FF FF"},
    };
    for (const auto &[offset, dump] : lines) {
        const Bytes expected = hex(dump);
        const ByteView actual = slice(page, offset, expected.size());
        EXPECT_EQ(Bytes(actual.begin(), actual.end()), expected) << dump;
    }
    EXPECT_EQ(encodeTableDefinition(parseTableDefinition(definition)), definition);
}

TEST(TableDefinitionCodec, SystemTablesHaveTheSizesOfRealOnes)
{
    constexpr std::size_t lengths[] = {1050, 335, 525, 813};
    for (const SystemTable which : kSystemTables) {
        const Bytes definition = encodeTableDefinition(systemTableDefinition(which));
        EXPECT_EQ(definition.size(), lengths[static_cast<std::size_t>(which)]);
        EXPECT_EQ(encodeTableDefinition(parseTableDefinition(definition)), definition);
    }
}

TEST(TableDefinitionCodec, ChainOfPagesIsFollowedButNotInCircles)
{
    TableDesign design = wideDesign(u"Lat");
    design.indexes.clear(); // they would need pages
    const Bytes definition = encodeTableDefinition(makeDefinition(design));
    ASSERT_EQ(definitionPageCount(definition.size()), 4u);
    const std::vector<Bytes> images =
        splitDefinition(definition, std::array<PageNo, 4>{20, 31, 22, 40});
    Bytes joined;
    for (std::size_t i = 0; const PageNo next : {31, 22, 40, 0})
        EXPECT_EQ(appendDefinitionPage(joined, PageBytes(images[i++])), next);
    EXPECT_EQ(encodeTableDefinition(parseTableDefinition(joined)), definition);
    EXPECT_EQ(errorOf([&] { appendDefinitionPage(joined, PageBytes(images[1])); }),
              ErrorCode::Damaged);
}

TEST(TableDefinitionCodec, RefusesInconsistentDefinitions)
{
    struct Case {
        const char *what;
        std::size_t offset;
        std::uint8_t byte;
    };
    const Bytes good = encodeTableDefinition(tabelDefinition());
    for (const Case &test :
         {Case{"length", 9, 0x7F}, Case{"kind", 40, 'X'}, Case{"max columns", 41, 9},
          Case{"max columns high", 42, 1}, Case{"column count", 45, 11},
          Case{"logical indexes", 50, 0x7F}, Case{"real indexes", 54, 0x7F},
          Case{"column type", 0x4B, 13}, Case{"number taken", 0x50, 1},
          Case{"length of a Long", 0x62, 8}, Case{"fixed offset", 0x7A, 0xFF},
          Case{"odd name", 0x145, 3}, Case{"index column", 0x1CF, 0x20}, Case{"root", 0x1F1, 0},
          Case{"real index of the logical one", 0x207, 1}, Case{"end mark", 0x233, 0}}) {
        Bytes bad = good;
        bad.at(test.offset) = test.byte;
        EXPECT_EQ(errorOf([&] { parseTableDefinition(bad); }), ErrorCode::Damaged) << test.what;
    }
    TableDefinition wide;
    wide.columns.assign(256, column(u"x", ColumnType::Byte));
    EXPECT_EQ(errorOf([&] { layOutColumns(wide); }), ErrorCode::TooManyColumns);
}

} // namespace jet
