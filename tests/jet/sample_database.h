#pragma once

#include "jet/database.h"

#include "tests/jet/jet_testing.h"
#include "tests/jet/mdbtools.h"

#include <string>
#include <vector>

// The measurement table and ways to look at it that the engine's tests share.

namespace jet
{

inline constexpr DateTime kSomeDay{46347.5};

/// Table Tabel as the station has it.
inline TableDesign tabelDesign(const Text &name = u"Tabel")
{
    TableDesign design;
    design.name = name;
    design.columns.push_back({u"Id", ColumnType::Long});
    for (char16_t digit = u'1'; digit <= u'6'; ++digit)
        design.columns.push_back({Text(u"Senzor") + digit, ColumnType::Double});
    design.columns.push_back({u"Alarma", ColumnType::Text, 10});
    design.columns.push_back({u"Data", ColumnType::DateTime});
    design.columns.push_back({u"Ora", ColumnType::DateTime});
    design.indexes.push_back({u"IndexPrimar", {{u"Id"}}, true});
    return design;
}

/// A sample as the station stores it; each depends on its number, so that mixed-up rows show.
inline Row sampleRow(std::int32_t id)
{
    Row row{id};
    for (int sensor = 1; sensor <= 6; ++sensor)
        row.push_back(20.0 + id * 0.5 + sensor);
    row.push_back(id % 7 == 0 ? Value(Text(u"Yes")) : Value());
    row.push_back(DateTime{46347.0});
    row.push_back(DateTime{id / 86400.0});
    return row;
}

inline void appendSamples(Table &table, std::int32_t first, std::int32_t last)
{
    for (std::int32_t id = first; id <= last; ++id)
        table.appendRow(sampleRow(id));
}

/// Calls a function inside one transaction.
template <typename Work>
void inTransaction(Database &database, Work &&work)
{
    Transaction transaction(database);
    work();
    transaction.commit();
}

/// Deletes the first record, and then each one that is `which` further.
inline void eraseEvery(Table table, int which)
{
    Cursor cursor = table.records();
    for (int i = 0; cursor.next(); ++i) {
        if (i % which == 0)
            cursor.erase();
    }
}

inline std::vector<Row> rowsOf(Cursor cursor)
{
    std::vector<Row> rows;
    while (cursor.next())
        rows.push_back(cursor.row());
    return rows;
}

/// First column of every record, as numbers.
inline std::vector<std::int32_t> idsOf(Cursor cursor)
{
    std::vector<std::int32_t> ids;
    while (cursor.next())
        ids.push_back(std::get<std::int32_t>(cursor.value(0)));
    return ids;
}

/// What check() finds, as lines; empty for a sound file.
inline std::string findings(const Database &database)
{
    std::string lines;
    for (const Finding &finding : database.check())
        lines += "page " + std::to_string(finding.page) + ": " + finding.reason + "\n";
    return lines;
}

inline OpenOptions unsynced()
{
    OpenOptions options;
    options.durability = Durability::Unsynced;
    options.lockTimeout = std::chrono::milliseconds(20);
    return options;
}

} // namespace jet
