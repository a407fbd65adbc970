#include "jet/format/header_page.h"
#include "jet/format/make_definition.h"
#include "jet/format/row_codec.h"
#include "jet/format/table_definition_codec.h"
#include "jet/format/text_codec.h"
#include "jet/store/system_tables.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <tuple>

// The bytes of the format: those of real files are written and read, damaged ones refused.

namespace jet
{

TEST(HeaderPage, IsTheOneOfTheDatabaseProgram)
{
    const Bytes expected = hex("00 01 00 00 53 74 61 6E 64 61 72 64 20 4A 65 74"
                               " 20 44 42 00 01 00 00 00 B5 6E 03 62 60 09 C2 55"
                               " E9 A9 67 72 40 3F 00 9C 7E 9F 90 FF 85 9A 31 C5"
                               " 79 BA ED 30 BC DF CC 9D 63 D9 E4 C3 9F 46 FB 8A"
                               " BC 4E 79 6F EC 37 A2 D0 9C FA 39 CA 28 E6 EC 22"
                               " 8A 60 AB 00 7B 36 0A E6 DF B1 88 60 13 43 30 3B"
                               " B1 33 CB F5 79 5B 6D 21 7C 2A AF D0 7C 99 08 1F"
                               " 98 FD AE 3D 55 E9 9D A1 82 66 5F 95 F8 D0 89 24"
                               " 85 67 C6 1F 27 44 D2 EE CF 65 ED FF 07 C7 46 A1"
                               " 78 16 0C ED E9 2D 62 D4 54 06 00 00 34 2E 30 00");
    const Bytes page = makeHeaderPage();
    ASSERT_EQ(page.size(), kPageSize);
    EXPECT_EQ(Bytes(page.begin(), page.begin() + 0xA0), expected);
    EXPECT_EQ(Bytes(page.begin() + 0xDFE, page.begin() + 0xE04), hex("00 00 00 01 00 01"));
    EXPECT_FALSE(errorOf([&] { checkHeaderPage(PageBytes(page)); }));
}

TEST(HeaderPage, RefusesWhatItCannotRead)
{
    const std::tuple<std::size_t, int, ErrorCode> changes[] = {
        {0x05, 1, ErrorCode::NotADatabase},   // signature
        {0x14, 1, ErrorCode::NotADatabase},   // version 0: Jet 3
        {0x14, 3, ErrorCode::NotADatabase},   // version 2: newer
        {0x00, 1, ErrorCode::NotADatabase},   // page type
        {0x3E, 1, ErrorCode::NotSupported},   // encoded pages
        {0x42, 1, ErrorCode::PasswordNeeded}, // first character
        {0x69, 1, ErrorCode::PasswordNeeded}, // last byte
    };
    for (const auto &[offset, toggled, expected] : changes) {
        Bytes page = makeHeaderPage();
        page[offset] = static_cast<std::uint8_t>(page[offset] ^ toggled);
        EXPECT_EQ(errorOf([&] { checkHeaderPage(PageBytes(page)); }), expected) << offset;
    }
}

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
    using Case = std::tuple<const char *, std::size_t, std::uint8_t>;
    const Bytes good = encodeTableDefinition(tabelDefinition());
    for (const auto &[what, offset, byte] :
         {Case{"length", 9, 0x7F}, Case{"kind", 40, 'X'}, Case{"max columns", 41, 9},
          Case{"max columns high", 42, 1}, Case{"column count", 45, 11},
          Case{"logical indexes", 50, 0x7F}, Case{"real indexes", 54, 0x7F},
          Case{"column type", 0x4B, 13}, Case{"number taken", 0x50, 1},
          Case{"length of a Long", 0x62, 8}, Case{"fixed offset", 0x7A, 0xFF},
          Case{"odd name", 0x145, 3}, Case{"index column", 0x1CF, 0x20}, Case{"root", 0x1F1, 0},
          Case{"real index of the logical one", 0x207, 1}, Case{"end mark", 0x233, 0}}) {
        Bytes bad = good;
        bad.at(offset) = byte;
        EXPECT_EQ(errorOf([&] { parseTableDefinition(bad); }), ErrorCode::Damaged) << what;
    }
    TableDefinition wide;
    wide.columns.assign(256, column(u"x", ColumnType::Byte));
    EXPECT_EQ(errorOf([&] { layOutColumns(wide); }), ErrorCode::TooManyColumns);
}

namespace
{

Row decodedRow(ByteView row, const RowLayout &layout)
{
    const RowView view(row, layout);
    Row values(layout.columns.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        view.read(i, values[i]);
    return values;
}

} // namespace

TEST(RowCodec, WritesTheDumpOfARealRow)
{
    const RowLayout layout = makeRowLayout(tabelDefinition());
    const std::vector<Value> values{
        std::int32_t{2},   121.5,           20.0, -1.5, 0.0, Null{}, 100.0, Text(u"Yes"),
        DateTime{46347.0}, DateTime{0.5625}};
    const Bytes row = hex("0A 00 02 00 00 00 00 00 00 00 00 60 5E 40 00 00 00 00 00 00 34 40"
                          " 00 00 00 00 00 00 F8 BF 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                          " 00 00 00 00 00 00 59 40 00 00 00 00 60 A1 E6 40 00 00 00 00 00 00 E2 3F"
                          " 59 00 65 00 73 00 4C 00 46 00 01 00 DF 03");
    EXPECT_EQ(encodeRow(values, layout), row);
    EXPECT_EQ(decodedRow(row, layout), values);
}

TEST(TextCodec, StoredForms)
{
    const std::tuple<Text, bool, const char *> forms[] = {
        {u"Yes", true, "FF FE 59 65 73"},
        {u"Yes", false, "59 00 65 00 73 00"},
        {u"No", true, "4E 00 6F 00"},
        {u"ab\u0103", true, "61 00 62 00 03 01"},
        {u"", true, ""},
    };
    for (const auto &[text, compressible, stored] : forms) {
        EXPECT_EQ(encodeText(text, compressible), hex(stored));
        EXPECT_EQ(decodeText(hex(stored)), text);
    }
    EXPECT_EQ(decodeText(hex("FF FE 41 00 03 01 41 00 00 42")), u"A\u0103AB") << "switches forms";
    EXPECT_EQ(decodeText(encodeText(u"\uFEFFab", false)), u"ab") << "never taken for compressed";
    for (const char *cut : {"41", "FF FE 41 00 03", "41 00 42"})
        EXPECT_EQ(errorOf([&] { decodeText(hex(cut)); }), ErrorCode::Damaged) << cut;
}

TEST(TextCodec, Utf8)
{
    const std::string utf8 = "a\u00B0\u0219\u20AC\U0001F321";
    EXPECT_EQ(toUtf8(fromUtf8(utf8)), utf8);
    EXPECT_EQ(fromUtf8("\U0001F321"), u"\xD83C\xDF21");
    EXPECT_EQ(toUtf8(u"x\xD83C"), "x\uFFFD") << "half a character";
    EXPECT_EQ(fromUtf8("\xC0\x80-\xE2\x82"), u"\uFFFD\uFFFD-\uFFFD\uFFFD") << "malformed";
}

} // namespace jet
