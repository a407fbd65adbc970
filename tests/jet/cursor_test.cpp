#include "tests/jet/new_database.h"

#include <algorithm>
#include <functional>

namespace jet
{
namespace
{

class Cursors : public NewDatabase
{
protected:
    Cursors()
    {
        inTransaction([&] { appendSamples(m_table, 1, 500); });
    }

    Table m_table = make(tabelDesign());
};

TEST_F(Cursors, EveryOrderGoesBothWays)
{
    const std::pair<const char *, std::function<Cursor()>> orders[] = {
        {"table", [&] { return m_table.records(); }},
        {"index", [&] { return m_table.byIndex(u"IndexPrimar"); }},
        {"index backward", [&] { return m_table.byIndex(u"indexprimar", Order::Descending); }},
        {"column with index", [&] { return m_table.sortedBy(u"Id", Order::Descending); }},
        {"column without index", [&] { return m_table.sortedBy(u"Senzor1", Order::Descending); }},
    };
    for (const auto &[name, open] : orders) {
        Cursor cursor = open();
        EXPECT_EQ(errorOf([&] { cursor.row(); }), ErrorCode::NoCurrentRecord) << name;
        std::vector<std::int32_t> forward = idsOf(open());
        EXPECT_EQ(forward.size(), 500U) << name;
        EXPECT_EQ(std::ranges::is_sorted(forward, std::greater<>()),
                  std::string(name) != "table" && std::string(name) != "index")
            << name;
        std::vector<std::int32_t> backward;
        for (bool found = cursor.last(); found; found = cursor.previous())
            backward.push_back(std::get<std::int32_t>(cursor.value(u"Id")));
        std::ranges::reverse(backward);
        EXPECT_EQ(forward, backward) << name;
        EXPECT_FALSE(cursor.hasCurrent()) << name;
    }
}

TEST_F(Cursors, KeepTheirPlaceWhileRowsComeAndGo)
{
    Cursor newest = m_table.byIndex(u"IndexPrimar", Order::Descending);
    ASSERT_TRUE(newest.next());
    Database other = Database::open(m_path, unsynced());
    Table same = other.table(u"Tabel");
    same.appendRow(sampleRow(501));
    const Value key = 499;
    Cursor remover = same.byIndex(u"IndexPrimar");
    ASSERT_TRUE(remover.seek(std::span(&key, 1)));
    remover.erase();
    EXPECT_EQ(errorOf([&] { remover.row(); }), ErrorCode::RecordDeleted);
    ASSERT_TRUE(newest.next());
    EXPECT_EQ(newest.value(u"Id"), Value(498));
    const Value high = 900;
    ASSERT_TRUE(newest.seek(std::span(&high, 1))); // descending: the first not above it
    EXPECT_EQ(newest.value(u"Id"), Value(501));
}

TEST_F(Cursors, EveryPassMeetsEachRecordOnceWhileItsKeyAndPlaceChange)
{
    Transaction transaction(m_database);
    const auto expectPass = [&](Cursor &cursor, bool (Cursor::*step)(), std::int32_t difference,
                                const Text &alarm) {
        int met = 0;
        for (bool found = cursor.hasCurrent(); found && met <= 500;
             found = (cursor.*step)(), ++met) {
            const Value id = std::get<std::int32_t>(cursor.value(u"Id")) + difference;
            cursor.update({{u"Id", id}, {u"Alarma", alarm}});
            EXPECT_EQ(cursor.value(u"Id"), id);
        }
        EXPECT_EQ(met, 500) << difference << ' ' << toUtf8(alarm);
    };
    Cursor cursors[] = {m_table.byIndex(u"IndexPrimar"), m_table.records()};
    for (Cursor &cursor : cursors) {
        cursor.first();
        expectPass(cursor, &Cursor::next, 1000, u"Yes");
        cursor.first();
        expectPass(cursor, &Cursor::next, 1000, u"Yesyesyes!"); // longer, so that rows move
        cursor.last();
        expectPass(cursor, &Cursor::previous, -1000, u"No");
        EXPECT_EQ(idsOf(std::move(cursor)).size(), 500U);
    }
    EXPECT_EQ(findings(m_database), "");
}

TEST_F(Cursors, SystemTablesAreOnlyRead)
{
    Table objects = m_database.table(u"MSysObjects");
    Cursor cursor = objects.records();
    ASSERT_TRUE(cursor.next());
    const Row row = cursor.row();
    const Assignments change{{u"Name", u"Alta"}};
    const std::function<void()> statements[] = {
        [&] { objects.append(change); }, [&] { objects.appendRow(row); },
        [&] { objects.deleteAll(); },    [&] { cursor.erase(); },
        [&] { cursor.update(change); },
    };
    for (const auto &statement : statements)
        EXPECT_EQ(errorOf(statement), ErrorCode::ReadOnly) << &statement - statements;
    EXPECT_EQ(cursor.row(), row);
}

TEST_F(Cursors, RefusedStatementLeavesTheRecordAndATransactionUsable)
{
    {
        Transaction dropped(m_database);
        m_table.deleteAll();
        EXPECT_EQ(m_table.recordCount(), 0U);
    }
    Cursor cursor = m_table.byIndex(u"IndexPrimar");
    ASSERT_TRUE(cursor.first());
    const std::pair<Assignments, ErrorCode> refused[] = {
        {{{u"Id", 2}}, ErrorCode::DuplicateKey},
        {{{u"Id", Value()}}, ErrorCode::NullNotAllowed},
        {{{u"Id", u"sapte"}}, ErrorCode::TypeConversion},
        {{{u"Lipsa", 1}}, ErrorCode::NoSuchItem},
    };
    inTransaction([&] {
        for (const auto &[assignments, error] : refused) {
            EXPECT_EQ(errorOf([&] { cursor.update(assignments); }), error);
            EXPECT_EQ(errorOf([&] { m_table.append(assignments); }), error);
        }
        EXPECT_EQ(cursor.row(), sampleRow(1));
        m_table.append({{u"Id", u"501"}, {u"Senzor1", 1}, {u"Alarma", true}});
    });
    EXPECT_EQ(m_table.recordCount(), 501U);
    EXPECT_EQ(findings(m_database), "");
}

} // namespace
} // namespace jet
