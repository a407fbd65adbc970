#include "tests/jet/new_database.h"

#include <algorithm>
#include <numeric>
#include <random>

// What the station and its users do to a file over weeks; after each the checker finds nothing and
// programs that share no code with the engine read the same.

namespace jet
{
namespace
{

class Scenario : public NewDatabase
{
protected:
    /// The checker finds nothing and both programs see the same rows, in every value.
    void expectSound(const Table &table)
    {
        EXPECT_EQ(findings(m_database), "");
        const std::string name = toUtf8(table.name());
        EXPECT_EQ(mdbCount(m_path, name), std::to_string(table.recordCount()) + "\n");
        const std::string ours = exported(table.records());
        const std::string theirs = mdbExport(m_path, name);
        const auto [our, their] = std::ranges::mismatch(ours, theirs);
        EXPECT_TRUE(ours == theirs)
            << "from here on: " << std::string(our, ours.end()).substr(0, 80)
            << "\nmdb-export: " << std::string(their, theirs.end()).substr(0, 80);
    }
    /// The primary index leads to all rows, in the order of their numbers.
    static void expectInOrder(const Table &table)
    {
        std::vector<std::int32_t> ids = idsOf(table.records());
        EXPECT_EQ(ids.size(), table.recordCount());
        std::ranges::sort(ids);
        EXPECT_EQ(ids, idsOf(table.byIndex(u"IndexPrimar")));
    }
};

TEST_F(Scenario, MonthOfSamplesGrowsEveryMapAndLevel)
{
    Table table = make(tabelDesign());
    inTransaction([&] { appendSamples(table, 1, 100000); });
    expectSound(table);
    EXPECT_EQ(table.recordCount(), 100000U);
    inTransaction([&] { eraseEvery(table, 3); });
    expectSound(table);
    EXPECT_EQ(table.recordCount(), 66666U);
    const auto size = std::filesystem::file_size(m_path);
    inTransaction([&] { appendSamples(table, 100001, 120000); });
    // The rows fit where others were; only their keys, greater than all before, need new pages.
    EXPECT_LT(std::filesystem::file_size(m_path), size + 60 * kPageSize);
    expectSound(table);
    expectInOrder(table);
}

TEST_F(Scenario, FileEmptiedEveryDayStaysAsLargeAsOneDay)
{
    Table table = make(tabelDesign());
    std::uintmax_t secondDay = 0;
    for (int day = 1; day <= 400; ++day) {
        inTransaction([&] { appendSamples(table, day, day + 449); });
        if (day % 100 == 1)
            expectSound(table);
        table.deleteAll();
        if (day % 100 == 1)
            expectSound(table);
        if (day <= 2)
            secondDay = std::filesystem::file_size(m_path);
        ASSERT_EQ(std::filesystem::file_size(m_path), secondDay) << "day " << day;
    }
    appendSamples(table, 1, 10);
    expectSound(table);
}

TEST_F(Scenario, RepairedFiftyTimes)
{
    Table table = make(tabelDesign());
    appendSamples(table, 1, 300);
    const std::vector<Row> rows = rowsOf(table.records());
    std::uintmax_t size = 0;
    for (int repair = 0; repair < 50; ++repair) {
        inTransaction([&] { copyDropAndRename(m_database); });
        if (repair == 1)
            size = std::filesystem::file_size(m_path);
        if (repair % 10 == 0)
            expectSound(table);
    }
    EXPECT_EQ(std::filesystem::file_size(m_path), size);
    EXPECT_TRUE(rowsOf(table.records()) == rows);
    EXPECT_EQ(mdbTables(m_path), "Tabel\n");
    expectSound(table);
    expectInOrder(table);
}

TEST_F(Scenario, RandomOrderThroughSeveralLevelsAndBackToNothing)
{
    TableDesign design = tabelDesign();
    design.columns[7].size = 100;
    design.indexes.push_back({u"Alarma", {{u"Alarma", true}, {u"Id"}}});
    Table table = make(design);
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
    expectSound(table);
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
        expectInOrder(table);
    }
}

TEST_F(Scenario, TextKeysWithEveryAsciiCharacter)
{
    Table table =
        make({u"Tabel",
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
    EXPECT_EQ(table.recordCount(), keys.size());
    expectSound(table);

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

    eraseEvery(table, 2);
    expectSound(table);
    EXPECT_EQ(rowsOf(table.byIndex(u"Sus")).size(), keys.size() / 2);
}

TEST_F(Scenario, TwoHundredColumnsOverManyPages)
{
    Table table = make(wideDesign(u"Tabel"));
    std::vector<Row> rows;
    for (int number = 0; number < 30 * 200;) {
        Row row;
        for (std::size_t i = 0; i < 200; ++i, ++number) {
            const Value values[] = {static_cast<std::int16_t>(number),
                                    fromUtf8(std::to_string(number)), number % 3 == 0,
                                    number / 8.0};
            row.push_back(number % 7 == 1 && i % 4 != 2 ? Value() : values[i % 4]);
        }
        table.appendRow(row);
        rows.push_back(std::move(row));
    }
    expectSound(table);
    EXPECT_TRUE(rowsOf(table.records()) == rows);

    m_database.dropTable(u"Tabel");
    EXPECT_EQ(findings(m_database), "");
    EXPECT_EQ(mdbTables(m_path), "");
}

TEST_F(Scenario, LongTextsOfEveryForm)
{
    Table table = make({u"Tabel", {{u"Id", ColumnType::Long}, {u"Text", ColumnType::Memo}}, {}});
    // inline up to 64 bytes, one row up to 4076, then chains; one and two bytes per character
    std::vector<Text> texts;
    for (const std::size_t length : {1, 31, 32, 33, 62, 65, 2038, 2039, 4074, 4077, 9000, 70000}) {
        texts.push_back(Text(length, u'a'));
        texts.push_back(Text(length, u'ș'));
    }
    for (std::size_t i = 0; i < texts.size(); ++i)
        table.append({{u"Id", static_cast<std::int32_t>(i)}, {u"Text", texts[i]}});
    expectSound(table);

    // longer, shorter, gone: each text takes the place of the one that follows it
    Cursor cursor = table.records();
    for (std::size_t i = 0; cursor.next(); ++i) {
        if (i % 3 == 0)
            cursor.erase();
        else
            cursor.update({{u"Text", texts[(i + 1) % texts.size()]}});
    }
    expectSound(table);
    for (const Row &row : rowsOf(table.records())) {
        const auto i = static_cast<std::size_t>(std::get<std::int32_t>(row[0]));
        EXPECT_NE(i % 3, 0u);
        EXPECT_EQ(row[1], Value(texts[(i + 1) % texts.size()])) << i;
    }
    table.deleteAll();
    expectSound(table);
}

} // namespace
} // namespace jet
