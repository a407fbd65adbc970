#include "jet/text_codec.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

// Tables that the measurements do not need but other people's files have, written by the engine
// and read back by it and by mdbtools.

namespace jet
{
namespace
{

class EveryType : public ::testing::Test
{
protected:
    Table make(TableDesign design)
    {
        design.name = u"T";
        return m_database.createTable(design, kSomeDay);
    }
    void expectSound() const { EXPECT_EQ(findings(m_database), ""); }
    std::string exported() const { return mdbExport(m_path, "T"); }
    TemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "t.mdb";
    Database m_database = Database::create(m_path, kSomeDay, unsynced());
};

TableDesign everyColumn()
{
    return {u"",
            {{u"Id", ColumnType::Long, 0, true},
             {u"Da", ColumnType::Boolean},
             {u"Octet", ColumnType::Byte},
             {u"Scurt", ColumnType::Integer},
             {u"Pret", ColumnType::Currency},
             {u"Simplu", ColumnType::Single},
             {u"Dublu", ColumnType::Double},
             {u"Cand", ColumnType::DateTime},
             {u"Brut", ColumnType::Binary, 8},
             {u"Nume", ColumnType::Text, 20},
             {u"Lung", ColumnType::Memo},
             {u"Obiect", ColumnType::Ole},
             {u"Guid", ColumnType::Guid},
             {u"Zecimal", ColumnType::Numeric, 0, false, 18, 4}},
            {{u"Cheie", {{u"Id"}}, true}}};
}

} // namespace

TEST_F(EveryType, ReadsTheSameInMdbtools)
{
    Table table = make(everyColumn());
    table.append({{u"Da", Text(u"Yes")},
                  {u"Octet", 200},
                  {u"Scurt", -2.5},
                  {u"Pret", Text(u"-1234.5678")},
                  {u"Simplu", 0.5},
                  {u"Dublu", 121.25},
                  {u"Cand", Text(u"2026-11-21 13:30:00")},
                  {u"Brut", Bytes{'a', 'b', 'c'}},
                  {u"Nume", Text(u"Șarjă „A” 5€")},
                  {u"Lung", Text(u"două\nrânduri")},
                  {u"Obiect", Bytes(5000, 'x')},
                  {u"Guid", Text(u"{00112233-4455-6677-8899-AABBCCDDEEFF}")},
                  {u"Zecimal", Text(u"-12345678901234.5678")}});
    table.append(Assignments{});
    expectSound();
    // mdbtools leave a hyphen of the GUID out
    EXPECT_EQ(exported(),
              "1,1,200,-2,-1234.5678,0.5,121.25,\"2026-11-21 13:30:00\",\"abc\",\"Șarjă „A” 5€\","
              "\"două\nrânduri\",\"" +
                  std::string(5000, 'x') +
                  "\",\"{00112233-4455-6677-8899AABBCCDDEEFF}\",-12345678901234.5678\n"
                  "2,0,,,,,,,,,,,,\n");

    const std::vector<Row> rows = rowsOf(Database::open(m_path).table(u"T").records());
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0][4], Value(Currency{-12345678}));
    EXPECT_EQ(rows[0][10], Value(Text(u"două\nrânduri")));
    EXPECT_EQ(rows[0][11], Value(Bytes(5000, 'x')));
    EXPECT_EQ(rows[0][13], Value(Numeric{true, {0xA630F34E, 0x01B69B4B}, 4}));
    EXPECT_TRUE(std::all_of(rows[1].begin() + 2, rows[1].end(), isNull));
}

TEST_F(EveryType, AssignmentsAreConvertedOrRefusedWhole)
{
    Table table = make(everyColumn());
    for (const auto &[column, value] : Assignments{{u"Da", Text(u"poate")},
                                                   {u"Octet", 256},
                                                   {u"Scurt", Text(u"1e5")},
                                                   {u"Cand", Text(u"31.02.2026")},
                                                   {u"Zecimal", Text(u"123456789012345")}}) {
        EXPECT_EQ(errorOf([&] {
                      table.append({{u"Nume", Text(u"x")}, {column, value}});
                  }),
                  ErrorCode::TypeConversion)
            << toUtf8(column);
    }
    EXPECT_EQ(errorOf([&] {
                  table.append(Assignments{{u"Nume", Text(21, u'x')}});
              }),
              ErrorCode::ValueTooLong);
    EXPECT_EQ(errorOf([&] { table.append(Assignments{{u"Nimic", 1}}); }), ErrorCode::NoSuchItem);
    EXPECT_EQ(table.recordCount(), 0u);
    expectSound();

    table.append({{u"Id", Text(u"7")}, {u"Scurt", 2.5}, {u"Nume", 0.1}, {u"Lung", kSomeDay}});
    EXPECT_EQ(exported(), "7,0,,2,,,,,,\"0.1\",\"2026-11-21 12:00:00\",,,\n");
}

TEST_F(EveryType, TwoHundredColumnsOverManyPages)
{
    TableDesign design;
    const ColumnType types[] = {ColumnType::Integer, ColumnType::Text, ColumnType::Boolean,
                                ColumnType::Double};
    for (std::size_t i = 0; i < 200; ++i)
        design.columns.push_back(
            {u"Coloana cu nume lung " + fromUtf8(std::to_string(i)), types[i % 4], 50});
    design.indexes = {{u"Prima", {{design.columns[0].name}}, true}};
    Table table = make(design);

    std::string expected;
    for (int row = 0; row < 30; ++row) {
        Assignments values;
        for (std::size_t i = 0; i < design.columns.size(); ++i) {
            const int number = 200 * row + static_cast<int>(i);
            const bool null = i != 0 && number % 7 == 0;
            values.emplace_back(design.columns[i].name, null ? Value{} : Value(number));
            expected += i == 0 ? "" : ",";
            if (types[i % 4] == ColumnType::Boolean)
                expected += null ? "0" : "1";
            else if (types[i % 4] == ColumnType::Text && !null)
                expected += '"' + std::to_string(number) + '"';
            else if (!null)
                expected += std::to_string(number);
        }
        expected += '\n';
        table.append(values);
    }
    expectSound();
    EXPECT_EQ(exported(), expected);
    EXPECT_EQ(rowsOf(Database::open(m_path).table(u"T").records()).size(), 30u);

    m_database.dropTable(u"T");
    expectSound();
}

TEST_F(EveryType, LongTextsOfEveryForm)
{
    Table table = make({u"", {{u"Id", ColumnType::Long}, {u"Text", ColumnType::Memo}}, {}});
    // inline up to 64 bytes, one row up to 4076, then chains; one and two bytes per character
    std::vector<Text> texts;
    for (const std::size_t length : {1, 31, 32, 33, 62, 65, 2038, 2039, 4074, 4077, 9000, 70000}) {
        texts.push_back(Text(length, u'a'));
        texts.push_back(Text(length, u'ș'));
    }
    std::string expected;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        table.append({{u"Id", static_cast<std::int32_t>(i)}, {u"Text", texts[i]}});
        expected += std::to_string(i) + ",\"" + toUtf8(texts[i]) + "\"\n";
    }
    expectSound();
    EXPECT_EQ(exported(), expected);

    // longer, shorter, gone: each text takes the place of the one that follows it
    Cursor cursor = table.records();
    for (std::size_t i = 0; cursor.next(); ++i) {
        if (i % 3 == 0)
            cursor.erase();
        else
            cursor.update({{u"Text", texts[(i + 1) % texts.size()]}});
    }
    expectSound();
    for (const Row &row : rowsOf(table.records())) {
        const auto i = static_cast<std::size_t>(std::get<std::int32_t>(row[0]));
        EXPECT_NE(i % 3, 0u);
        EXPECT_EQ(row[1], Value(texts[(i + 1) % texts.size()])) << i;
    }
    table.deleteAll();
    expectSound();
}

TEST_F(EveryType, TextKeysWithEveryAsciiCharacter)
{
    Table table =
        make({u"",
              {{u"Cheie", ColumnType::Text, 20}, {u"Nr", ColumnType::Integer}},
              {{u"Sus", {{u"Cheie"}}, false, true}, {u"Jos", {{u"Cheie", true}, {u"Nr"}}}}});
    std::vector<Text> keys;
    for (char16_t c = 1; c < 0x80; ++c) {
        if (c >= u'a' && c <= u'z')
            continue; // the same keys as the upper case
        for (const Text &rest : {Text(u""), Text(u"x"), Text(u"ăâîşţ")}) {
            keys.push_back(Text(1, c) + rest);
            keys.push_back(u"q" + Text(2, c) + u"Z" + rest);
        }
    }
    std::erase(keys, Text(u" ")); // trailing blanks do not count: an empty key
    std::shuffle(keys.begin(), keys.end(), std::mt19937(7));
    for (std::size_t i = 0; i < keys.size(); ++i)
        table.append({{u"Cheie", keys[i]}, {u"Nr", static_cast<std::int32_t>(i)}});
    EXPECT_EQ(errorOf([&] {
                  table.append(Assignments{{u"Cheie", Text(u"QaAz ")}});
              }),
              ErrorCode::DuplicateKey);
    expectSound();
    EXPECT_EQ(mdbCount(m_path, "T"), std::to_string(keys.size()) + "\n");

    Cursor up = table.byIndex(u"Sus");
    for (const Text &key : keys) {
        const Value wanted(key);
        ASSERT_TRUE(up.seek(std::span(&wanted, 1)));
        EXPECT_EQ(up.value(u"Cheie"), wanted);
    }
    std::vector<Row> ascending = rowsOf(table.byIndex(u"Sus"));
    const std::vector<Row> descending = rowsOf(table.byIndex(u"Jos"));
    std::reverse(ascending.begin(), ascending.end());
    EXPECT_EQ(ascending, descending);

    Cursor all = table.records();
    for (bool erase = true; all.next(); erase = !erase) {
        if (erase)
            all.erase();
    }
    expectSound();
    EXPECT_EQ(rowsOf(table.byIndex(u"Sus")).size(), keys.size() / 2);
}

TEST_F(EveryType, SortsByColumnsThatNoIndexCouldHave)
{
    Table table = make(everyColumn());
    for (const char16_t *text : {u"b", u"\u03A9", u"", u"a", u"\u20AC"})
        table.append({{u"Nume", Text(text)}, {u"Zecimal", Text(u"-1.5")}, {u"Obiect", Bytes{7}}});
    table.append(Assignments{{u"Zecimal", 1}});
    EXPECT_EQ(idsOf(table.sortedBy(u"Nume")), (std::vector<std::int32_t>{6, 3, 4, 1, 2, 5}));
    EXPECT_EQ(idsOf(table.sortedBy(u"Nume", Order::Descending)).front(), 5);
    EXPECT_EQ(idsOf(table.sortedBy(u"Zecimal", Order::Descending)).front(), 6);
    EXPECT_EQ(idsOf(table.sortedBy(u"Obiect")).front(), 6);
}

} // namespace jet
