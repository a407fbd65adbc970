#include "tests/jet/new_database.h"

#include <algorithm>
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

TEST_F(Scenario, FileEmptiedEveryDayAndRepairedFiftyTimesStaysAsLargeAsOneDay)
{
    Table table = make(tabelDesign());
    std::uintmax_t secondDay = 0;
    for (int day = 1; day <= 400; ++day) {
        inTransaction([&] { appendSamples(table, day, day + 449); });
        if (day <= 50)
            inTransaction([&] { copyDropAndRename(m_database); });
        EXPECT_EQ(rowsOf(table.records()).back(), sampleRow(day + 449));
        if (day % 20 == 1) {
            expectSound(table);
            expectInOrder(table);
        }
        table.deleteAll();
        if (day % 20 == 1)
            expectSound(table);
        if (day <= 2)
            secondDay = std::filesystem::file_size(m_path);
        ASSERT_EQ(std::filesystem::file_size(m_path), secondDay) << "day " << day;
    }
    EXPECT_EQ(mdbTables(m_path), "Tabel\n");
    appendSamples(table, 1, 10);
    expectSound(table);
}

TEST_F(Scenario, TextKeysThroughSeveralLevelsAndBackToNothing)
{
    Table table =
        make({u"Tabel",
              {{u"Cheie", ColumnType::Text, 100}, {u"Nr", ColumnType::Integer}},
              {{u"Sus", {{u"Cheie"}}, false, true}, {u"Jos", {{u"Cheie", true}, {u"Nr"}}}}});
    std::vector<Text> keys;
    for (char16_t c = 1; c < 0x80; ++c) {
        if (c >= u'a' && c <= u'z')
            continue; // the same keys as the upper case
        for (std::size_t length = 80; length < 92; ++length) {
            const Text rest = length % 2 == 0 ? Text(u"ăâîşţ") : Text();
            keys.push_back(c + rest + Text(length, u'x'));
            keys.push_back(u"q" + Text(2, c) + u"Z" + rest + Text(length, u'x'));
        }
    }
    std::mt19937 random(7);
    std::ranges::shuffle(keys, random);
    inTransaction([&] {
        for (const Text &key : keys)
            table.append({{u"Cheie", key}, {u"Nr", 7}});
    });
    const Text taken = keys.back() + u"  "; // trailing blanks do not count
    EXPECT_EQ(errorOf([&] { table.appendRow({taken, 7}); }), ErrorCode::DuplicateKey);
    std::ranges::shuffle(keys, random);
    for (const std::size_t keep : {keys.size(), keys.size() / 2, std::size_t{20}, std::size_t{0}}) {
        inTransaction([&] {
            Cursor cursor = table.byIndex(u"Sus");
            for (; keys.size() > keep; keys.pop_back()) {
                const Value key = keys.back();
                ASSERT_TRUE(cursor.seek(std::span(&key, 1)));
                EXPECT_EQ(cursor.value(u"Cheie"), key);
                cursor.erase();
            }
        });
        expectSound(table);
        std::vector<Row> ascending = rowsOf(table.byIndex(u"Sus"));
        EXPECT_EQ(ascending.size(), keep);
        std::ranges::reverse(ascending);
        EXPECT_EQ(ascending, rowsOf(table.byIndex(u"Jos")));
    }
}

TEST_F(Scenario, TwoHundredColumnsOverManyPages)
{
    const Table table = make(wideDesign(u"Tabel"));
    fillWide(table);
    expectSound(table);
    m_database.dropTable(u"Tabel");
    EXPECT_EQ(findings(m_database), "");
    EXPECT_EQ(mdbTables(m_path), "");
}

TEST_F(Scenario, LongValuesOfEveryForm)
{
    Table table = make(notesDesign());
    appendNotes(table, 1, 44);
    expectSound(table);
    changeNotes(table); // longer, shorter, gone
    expectSound(table);
    for (const Row &row : rowsOf(table.records())) {
        const auto number = std::get<std::int32_t>(row[0]);
        EXPECT_NE(number % 3, 0);
        EXPECT_EQ(row[3], note(number + 1)[2].second) << number;
    }
    table.deleteAll();
    expectSound(table);
}

} // namespace
} // namespace jet
