#include "jet/store/session.h"
#include "tests/jet/new_database.h"

#include <algorithm>
#include <limits>

namespace jet
{

TEST_F(NewDatabase, EveryTypeReadsTheSameInMdbtools)
{
    Table table = make(everyColumnDesign());
    table.appendRow(everyRow());
    table.append(Assignments{});
    EXPECT_EQ(findings(m_database), "");
    // mdbtools leave a hyphen of the GUID out
    EXPECT_EQ(mdbExport(m_path, "T"),
              "1,1,200,-2,-1234.5678,0.5,121.25,2026-11-21 13:30:00,abc,Șarjă „A” 5€,"
              "două\nrânduri," +
                  std::string(5000, 'x') +
                  ",{00112233-4455-6677-8899AABBCCDDEEFF},-12345678901234.5678\n"
                  "2,0,,,,,,,,,,,,\n");
    Row empty(14);
    empty[0] = 2;
    empty[1] = false;
    EXPECT_EQ(rowsOf(Database::open(m_path).table(u"T").records()),
              (std::vector{everyRow(), empty}));
}

TEST_F(NewDatabase, SortsByColumnsThatNoIndexCouldHave)
{
    Table table = make(everyColumnDesign());
    for (const char16_t *text : {u"b", u"\u03A9", u"", u"a", u"\u20AC"})
        table.append({{u"Nume", Text(text)}, {u"Zecimal", Text(u"-1.5")}, {u"Obiect", Bytes{7}}});
    table.append(Assignments{{u"Zecimal", 1}});
    EXPECT_EQ(idsOf(table.sortedBy(u"Nume")), (std::vector<std::int32_t>{6, 3, 4, 1, 2, 5}));
    EXPECT_EQ(idsOf(table.sortedBy(u"Nume", Order::Descending)).front(), 5);
    EXPECT_EQ(idsOf(table.sortedBy(u"Zecimal", Order::Descending)).front(), 6);
    EXPECT_EQ(idsOf(table.sortedBy(u"Obiect")).front(), 6);
}

TEST_F(NewDatabase, AutonumbersGoOnAfterNegativeNumbersAndEndAtTheGreatest)
{
    Table table = make({u"T", {{u"Nr", ColumnType::Long, 0, true}}, {{u"Nr", {{u"Nr"}}, true}}});
    const std::int32_t greatest = std::numeric_limits<std::int32_t>::max();
    for (const Value &number : {Value(), Value(-2), Value(), Value()})
        table.appendRow({number});
    Cursor cursor = table.records();
    cursor.last();
    cursor.update({{u"Nr", 4}});
    table.appendRow({Value()});
    {
        Session other(makeSystemFiles(), m_path, unsynced()); // lets the number fall behind
        other.begin();
        other.table(u"T")->continueAutonumber(1);
        other.commit();
    }
    for (const Value &number : {Value(), Value(), Value(greatest)})
        table.appendRow({number});
    EXPECT_EQ(errorOf([&] { table.appendRow({Value()}); }), ErrorCode::NotSupported);
    EXPECT_EQ(idsOf(table.records()), (std::vector<std::int32_t>{1, -2, 2, 4, 5, 3, 6, greatest}));
}

TEST_F(NewDatabase, RecordWhoseKeyOrRowIsTooLongIsRefusedAlone)
{
    TableDesign design{u"T", {}, {{u"Toate", {}}}};
    for (const char16_t name : Text(u"ABCDEFGHIJKLMNOPQRSTUVWX"))
        design.columns.push_back({Text(1, name), ColumnType::Binary, 255});
    for (const char16_t name : Text(u"ABCDEFGH"))
        design.indexes.front().columns.push_back({Text(1, name)});
    Table table = make(design);
    Row longKey(24);
    std::fill_n(longKey.begin(), 8, Bytes(255, 1));
    Row longRow(24, Bytes(255, 1));
    std::fill_n(longRow.begin(), 8, Null{});
    inTransaction([&] {
        for (const Row &row : {longKey, longRow})
            EXPECT_EQ(errorOf([&] { table.appendRow(row); }), ErrorCode::RecordTooLarge);
        table.appendRow(Row(24, Bytes(9, 1)));
    });
    EXPECT_EQ(table.recordCount(), 1U);
}

TEST_F(NewDatabase, NamesThatTheDatabaseProgramWouldNotTakeAreRefused)
{
    const auto named = [](const Text &table, const Text &column, const Text &index) {
        return TableDesign{table, {{column, ColumnType::Long}}, {{index, {{column}}}}};
    };
    const Text longest(64, u'n');
    make(named(longest, longest, longest));
    for (const Text &name : {Text(), Text(65, u'n'), Text(u" a"), Text(u"a.b"), Text(u"a!"),
                             Text(u"[a]"), Text(u"a`"), Text(u"a\n")}) {
        for (const TableDesign &design :
             {named(name, u"A", u"A"), named(u"A", name, u"A"), named(u"A", u"A", name)})
            EXPECT_EQ(errorOf([&] { make(design); }), ErrorCode::InvalidName) << toUtf8(name);
        EXPECT_EQ(errorOf([&] { m_database.renameTable(longest, name, kSomeDay); }),
                  ErrorCode::InvalidName);
    }
    EXPECT_EQ(m_database.tables(), std::vector{longest});
    EXPECT_EQ(findings(m_database), "");
}

} // namespace jet
