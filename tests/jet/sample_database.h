#pragma once

#include "jet/database.h"
#include "jet/format/make_definition.h"
#include "jet/utf8.h"
#include "tests/jet/jet_testing.h"

#include <string>
#include <vector>

// The measurement table and ways to look at it that the engine's tests share.

namespace jet
{

inline constexpr DateTime kSomeDay{46347.5};

inline OpenOptions unsynced(bool readOnly = false)
{
    return {readOnly, Durability::Unsynced, std::chrono::milliseconds(20)};
}

/// Table Tabel as the station has it.
inline TableDesign tabelDesign(const Text &name = u"Tabel")
{
    TableDesign design{name, {{u"Id", ColumnType::Long}}, {{u"IndexPrimar", {{u"Id"}}, true}}};
    for (char16_t digit = u'1'; digit <= u'6'; ++digit)
        design.columns.push_back({Text(u"Senzor") + digit, ColumnType::Double});
    design.columns.push_back({u"Alarma", ColumnType::Text, 10});
    design.columns.push_back({u"Data", ColumnType::DateTime});
    design.columns.push_back({u"Ora", ColumnType::DateTime});
    return design;
}

/// The same as the dumps of real files show it: definition on page 16, no text compressed.
inline TableDefinition tabelDefinition()
{
    TableDefinition table = makeDefinition(tabelDesign());
    table.columns[7].compressible = false;
    table.ownedPages = {17, 0};
    table.freeSpacePages = {17, 1};
    table.realIndexes[0].usageMap = {17, 2};
    table.realIndexes[0].root = 18;
    return table;
}

inline TableDesign everyColumnDesign()
{
    return {u"T",
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

inline Row everyRow()
{
    return {1,
            true,
            std::uint8_t{200},
            std::int16_t{-2},
            Currency{-12345678},
            0.5f,
            121.25,
            DateTime{46347.5625},
            Bytes{'a', 'b', 'c'},
            Text(u"Șarjă „A” 5€"),
            Text(u"două\nrânduri"),
            Bytes(5000, 'x'),
            Guid{{0x33, 0x22, 0x11, 0, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD,
                  0xEE, 0xFF}},
            Numeric{true, {0xA630F34E, 0x01B69B4B}, 4}};
}

/// 200 columns of four types, whose definition takes several pages.
inline TableDesign wideDesign(const Text &name)
{
    TableDesign design{name, {}, {{u"Prima", {{u"Coloana cu nume lung 0"}}}}};
    const ColumnType types[] = {ColumnType::Integer, ColumnType::Text, ColumnType::Boolean,
                                ColumnType::Double};
    for (std::size_t i = 0; i < 200; ++i)
        design.columns.push_back(
            {u"Coloana cu nume lung " + fromUtf8(std::to_string(i)), types[i % 4], 50});
    return design;
}

inline void fillWide(Table table)
{
    const std::vector<ColumnDesign> columns = table.design().columns;
    for (std::size_t row = 1; row <= 6; ++row) {
        Assignments values;
        for (std::size_t i = 0; i < columns.size(); i += row) // the others stay null
            values.emplace_back(columns[i].name, static_cast<std::int32_t>(row * 1000 + i));
        table.append(values);
    }
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

inline void appendSamples(Table table, std::int32_t first, std::int32_t last)
{
    for (std::int32_t id = first; id <= last; ++id)
        table.appendRow(sampleRow(id));
}

/// Makes the table with that many samples.
inline void makeTabel(Database &database, std::int32_t samples)
{
    appendSamples(database.createTable(tabelDesign(), kSomeDay), 1, samples);
}

inline void makeTabel(const std::filesystem::path &path, std::int32_t samples)
{
    Database database = Database::create(path, kSomeDay, unsynced());
    makeTabel(database, samples);
}

/// Keys of two columns and of long texts, and values of any length.
inline TableDesign notesDesign()
{
    return {u"Note",
            {{u"Id", ColumnType::Long, 0, true},
             {u"Nume", ColumnType::Text, 255},
             {u"Data", ColumnType::DateTime},
             {u"Text", ColumnType::Memo},
             {u"Poza", ColumnType::Ole}},
            {{u"Id", {{u"Id"}}, true}, {u"Cheie", {{u"Nume", true}, {u"Data"}}}}};
}

/// Its long values lie in the row, in a row of their own or in a chain of pages.
inline Assignments note(int number)
{
    constexpr std::size_t lengths[] = {1, 31, 33, 62, 65, 500, 2038, 2039, 4074, 4077, 9000};
    const std::size_t length = lengths[static_cast<std::size_t>(number) % std::size(lengths)];
    return {{u"Nume", Text(static_cast<std::size_t>(number * 37 % 200), u'ă') + u"-'" +
                          static_cast<char16_t>(u'!' + number % 90)},
            {u"Data", DateTime{number * 1.5}},
            {u"Text", Text(length, number % 2 == 0 ? u't' : u'ș')},
            {u"Poza", Bytes(length, 'p')}};
}

inline void appendNotes(Table table, int first, int last)
{
    for (int number = first; number <= last; ++number)
        table.append(note(number));
}

/// Gives each record but every third, which is deleted, what the note of the next number has.
inline void changeNotes(const Table &table)
{
    Cursor cursor = table.records();
    for (int number = 1; cursor.next(); ++number) {
        if (number % 3 == 0)
            cursor.erase();
        else
            cursor.update(note(number + 1));
    }
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
inline void eraseEvery(const Table &table, int which)
{
    Cursor cursor = table.records();
    for (int i = 0; cursor.next(); ++i) {
        if (i % which == 0)
            cursor.erase();
    }
}

/// As the station repairs its table: copied, the old one dropped, the copy given its name.
inline void copyDropAndRename(Database &database)
{
    const Table old = database.table(u"Tabel");
    TableDesign design = old.design();
    design.name = u"Tabel2";
    Table copy = database.createTable(design, kSomeDay);
    for (Cursor cursor = old.records(); cursor.next();)
        copy.appendRow(cursor.row());
    database.dropTable(u"Tabel");
    database.renameTable(u"Tabel2", u"Tabel", kSomeDay);
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

} // namespace jet
