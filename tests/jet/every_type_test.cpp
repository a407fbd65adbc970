#include "jet/text_codec.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <algorithm>

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
