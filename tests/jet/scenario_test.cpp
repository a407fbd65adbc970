#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <sstream>

// What the station and its users do to a file over weeks; after each the checker finds nothing and
// programs that share no code with the engine read the same.

namespace jet
{
namespace
{

class Scenario : public testing::Test
{
protected:
    void expectSound(const Table &table)
    {
        EXPECT_EQ(findings(m_database), "");
        EXPECT_EQ(mdbCount(m_path, "Tabel"), std::to_string(table.recordCount()) + "\n");
        std::vector<std::int32_t> inTableOrder = idsOf(table.records());
        EXPECT_EQ(inTableOrder.size(), table.recordCount());
        std::ranges::sort(inTableOrder);
        EXPECT_EQ(inTableOrder, idsOf(table.byIndex(u"IndexPrimar")));
        std::vector<std::int32_t> exported;
        std::istringstream lines(mdbExport(m_path, "Tabel"));
        for (std::string line; std::getline(lines, line);)
            exported.push_back(std::stoi(line));
        std::ranges::sort(exported);
        EXPECT_EQ(exported, inTableOrder);
    }

    template <typename Work>
    void inTransaction(Work &&work)
    {
        Transaction transaction(m_database);
        work();
        transaction.commit();
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "autoclava1.mdb";
    Database m_database = Database::create(m_path, kSomeDay, unsynced());
};

TEST_F(Scenario, MonthOfSamplesGrowsEveryMapAndLevel)
{
    Table table = m_database.createTable(tabelDesign(), kSomeDay);
    inTransaction([&] { appendSamples(table, 1, 100000); });
    expectSound(table);
    EXPECT_EQ(table.recordCount(), 100000U);
    inTransaction([&] {
        Cursor cursor = table.records();
        for (int i = 0; cursor.next(); ++i) {
            if (i % 3 == 0)
                cursor.erase();
        }
    });
    EXPECT_EQ(table.recordCount(), 66666U);
    const auto size = std::filesystem::file_size(m_path);
    inTransaction([&] { appendSamples(table, 100001, 120000); });
    // The rows fit where others were; only their keys, greater than all before, need new pages.
    EXPECT_LT(std::filesystem::file_size(m_path), size + 60 * kPageSize);
    expectSound(table);
}

TEST_F(Scenario, FileEmptiedEveryDayStaysAsLargeAsOneDay)
{
    Table table = m_database.createTable(tabelDesign(), kSomeDay);
    std::uintmax_t secondDay = 0;
    for (int day = 1; day <= 400; ++day) {
        inTransaction([&] { appendSamples(table, 1, 450); });
        table.deleteAll();
        if (day == 2)
            secondDay = std::filesystem::file_size(m_path);
    }
    EXPECT_EQ(std::filesystem::file_size(m_path), secondDay);
    appendSamples(table, 1, 10);
    expectSound(table);
}

TEST_F(Scenario, RepairedFiftyTimes)
{
    Table table = m_database.createTable(tabelDesign(), kSomeDay);
    appendSamples(table, 1, 300);
    const std::vector<Row> rows = rowsOf(table.records());
    std::uintmax_t size = 0;
    for (int repair = 0; repair < 50; ++repair) {
        inTransaction([&] {
            TableDesign design = table.design();
            design.name = u"Tabel2";
            Table copy = m_database.createTable(design, kSomeDay);
            for (Cursor cursor = table.records(); cursor.next();)
                copy.appendRow(cursor.row());
            m_database.dropTable(u"Tabel");
            m_database.renameTable(u"Tabel2", u"Tabel", kSomeDay);
        });
        if (repair == 1)
            size = std::filesystem::file_size(m_path);
    }
    EXPECT_EQ(std::filesystem::file_size(m_path), size);
    EXPECT_TRUE(rowsOf(table.records()) == rows);
    EXPECT_EQ(mdbTables(m_path), "Tabel\n");
    expectSound(table);
}

TEST_F(Scenario, RandomOrderThroughSeveralLevelsAndBackToNothing)
{
    TableDesign design = tabelDesign();
    design.columns[7].size = 100;
    design.indexes.push_back({u"Alarma", {{u"Alarma", true}, {u"Id"}}});
    Table table = m_database.createTable(design, kSomeDay);
    std::mt19937 random(7);
    std::vector<std::int32_t> ids(2600);
    std::iota(ids.begin(), ids.end(), 1);
    std::ranges::shuffle(ids, random);
    inTransaction([&] {
        for (const std::int32_t id : ids) {
            Row row = sampleRow(id);
            row[7] = Text(90, static_cast<char16_t>(u'a' + id % 26)) +
                     Text(1, static_cast<char16_t>(u'0' + id % 10));
            table.appendRow(std::move(row));
        }
    });
    EXPECT_EQ(findings(m_database), "");
    std::ranges::shuffle(ids, random);
    for (const std::size_t keep : {1300U, 20U, 0U}) {
        inTransaction([&] {
            Cursor cursor = table.byIndex(u"IndexPrimar");
            for (; ids.size() > keep; ids.pop_back()) {
                const Value key = ids.back();
                ASSERT_TRUE(cursor.seek(std::span(&key, 1)));
                cursor.erase();
            }
        });
        expectSound(table);
    }
}

TEST_F(Scenario, TextKeysOfEveryCharacterAreFoundInOrder)
{
    TableDesign design;
    design.name = u"Tabel";
    design.columns = {{u"Id", ColumnType::Long}, {u"Nume", ColumnType::Text, 30}};
    design.indexes = {{u"IndexPrimar", {{u"Id"}}, true}, {u"Nume", {{u"Nume"}}}};
    Table table = m_database.createTable(design, kSomeDay);
    for (char16_t unit = 1; unit < 0x80; ++unit)
        table.append({{u"Id", std::int32_t{unit}}, {u"Nume", Text(u"a") + unit + u"b"}});
    EXPECT_EQ(findings(m_database), "");
    EXPECT_EQ(mdbCount(m_path, "Tabel"), "127\n");
    for (char16_t unit = u'!'; unit < 0x7F; ++unit) {
        const Value key = Text(u"a") + unit + u"b";
        Cursor cursor = table.byIndex(u"Nume");
        ASSERT_TRUE(cursor.seek(std::span(&key, 1)));
        const Text found = std::get<Text>(cursor.value(u"Nume"));
        const bool isLetter = (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
        EXPECT_TRUE(found[1] == unit || (isLetter && (found[1] ^ unit) == 0x20)) << int{unit};
    }
}

TEST_F(Scenario, TwoHundredColumnsAndLongText)
{
    TableDesign design;
    design.name = u"Lat";
    for (int i = 0; i < 199; ++i)
        design.columns.push_back({Text(u"Coloana cu nume lung ") +
                                      static_cast<char16_t>(u'A' + i / 20) +
                                      static_cast<char16_t>(u'a' + i % 20),
                                  i % 2 == 0 ? ColumnType::Long : ColumnType::Boolean});
    design.columns.push_back({u"Observatii", ColumnType::Memo});
    Table table = m_database.createTable(design, kSomeDay);
    Row row;
    for (int i = 0; i < 199; ++i)
        row.push_back(i % 2 == 0 ? Value(std::int32_t{i}) : Value(i % 3 == 0));
    for (const std::size_t length : {0U, 10U, 2000U, 5000U, 70000U}) {
        Row full = row;
        full.push_back(length == 0 ? Value() : Value(Text(length, u'x') + u'\u0219'));
        table.appendRow(full);
        Cursor cursor = table.records();
        ASSERT_TRUE(cursor.last());
        EXPECT_TRUE(cursor.row() == full) << length;
    }
    EXPECT_EQ(findings(m_database), "");
    EXPECT_EQ(mdbCount(m_path, "Lat"), "5\n");
    m_database.dropTable(u"Lat");
    EXPECT_EQ(findings(m_database), "");
    EXPECT_EQ(mdbTables(m_path), "");
}

} // namespace
} // namespace jet
