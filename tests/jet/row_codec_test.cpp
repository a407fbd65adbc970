#include "jet/format/make_definition.h"
#include "jet/format/row_codec.h"
#include "jet/format/text_codec.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

namespace jet
{
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
    EXPECT_EQ(decodeRow(row, layout), values);
}

TEST(RowCodec, ColumnsAddedLaterAreNullInOldRows)
{
    TableDefinition then;
    then.columns = {column(u"a", ColumnType::Long), column(u"b", ColumnType::Byte)};
    layOutColumns(then);
    const Bytes oldRow = encodeRow(std::vector<Value>{7, std::uint8_t{9}}, makeRowLayout(then));

    TableDefinition now = then;
    now.columns.push_back(column(u"c", ColumnType::Text, 20));
    now.columns.push_back(column(u"d", ColumnType::Boolean));
    layOutColumns(now);
    EXPECT_EQ(decodeRow(oldRow, makeRowLayout(now)),
              (std::vector<Value>{7, std::uint8_t{9}, Null{}, false}));
}

TEST(RowCodec, RefusesValuesThatDoNotFit)
{
    TableDefinition table;
    table.columns.assign(9, column(u"t", ColumnType::Text, 510));
    table.columns.push_back(column(u"n", ColumnType::Long));
    layOutColumns(table);
    const RowLayout layout = makeRowLayout(table);
    std::vector<Value> values(10);
    values[0] = Text(256, u'x');
    EXPECT_EQ(errorOf([&] { encodeRow(values, layout); }), ErrorCode::ValueTooLong);
    values.assign(10, Text(255, u'x'));
    values[9] = 1;
    EXPECT_EQ(errorOf([&] { encodeRow(values, layout); }), ErrorCode::RecordTooLarge);
    values.assign(10, Null{});
    values[9] = 1.0;
    EXPECT_EQ(errorOf([&] { encodeRow(values, layout); }), ErrorCode::TypeConversion);
}

TEST(RowCodec, DamagedRowsAreReportedNeverRead)
{
    const RowLayout layout = makeRowLayout(makeDefinition(everyColumnDesign()));
    Row values = everyRow();
    values[10] = values[11] = Bytes(12, 1); // where a long value lies
    const Bytes row = encodeRow(values, layout);
    std::mt19937 random(1);
    int refused = 0;
    for (int i = 0; i < 20000; ++i) {
        Bytes damaged = row;
        for (int n = 0; n < 2; ++n)
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        if (i % 2 == 0)
            damaged.resize(random() % damaged.size());
        const auto error = errorOf([&] { decodeRow(damaged, layout); });
        EXPECT_TRUE(!error || *error == ErrorCode::Damaged);
        refused += error ? 1 : 0;
    }
    EXPECT_GT(refused, 1000);
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
