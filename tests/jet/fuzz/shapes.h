#pragma once

#include "tests/jet/file_image.h"
#include "tests/jet/sample_database.h"

#include "jet/store/session.h"
#include "jet/store/usage_map.h"
#include "jet/utf8.h"

#include <string>
#include <vector>

// Sound databases to damage, small and each with other kinds of pages and rows. Fixed bytes for
// ever, as recorded damage names places in them: what is new goes into a new shape.

namespace jet
{

/// The station's table, and one of many types with deleted rows.
inline void makeStationShape(Database &database)
{
    Table samples = database.createTable(tabelDesign(), kSomeDay);
    appendSamples(samples, 1, 40);
    TableDesign design;
    design.name = u"Note";
    design.columns = {{u"Nr", ColumnType::Long, 0, true}, {u"Nume", ColumnType::Text, 40},
                      {u"Text", ColumnType::Memo},        {u"Da", ColumnType::Boolean},
                      {u"Poza", ColumnType::Ole},         {u"Pret", ColumnType::Currency},
                      {u"Cod", ColumnType::Guid},         {u"Suma", ColumnType::Numeric}};
    design.indexes = {{u"Nr", {{u"Nr"}}, true},
                      {u"Nume", {{u"Nume", true}, {u"Da"}}},
                      {u"Pret", {{u"Pret"}}, false, true, false, true}};
    Table notes = database.createTable(design, kSomeDay);
    for (int i = 0; i < 100; ++i)
        notes.append({{u"Nume", Text(38, static_cast<char16_t>(u'A' + i % 26))},
                      {u"Text", Text(static_cast<std::size_t>(i % 20 == 0 ? i * 90 : i), u't')},
                      {u"Da", i % 3 == 0},
                      {u"Poza", Bytes(static_cast<std::size_t>(i), 7)},
                      {u"Suma", i}});
    eraseEvery(notes, 4);
}

/// An index of every key type, ascending and descending in turn, one over several columns, and
/// long text keys on two levels.
inline void makeKeysShape(Database &database)
{
    TableDesign design;
    design.name = u"Chei";
    const ColumnType types[] = {ColumnType::Boolean, ColumnType::Byte,     ColumnType::Integer,
                                ColumnType::Long,    ColumnType::Currency, ColumnType::Single,
                                ColumnType::Double,  ColumnType::DateTime, ColumnType::Binary,
                                ColumnType::Guid,    ColumnType::Numeric,  ColumnType::Text};
    char16_t name = u'A';
    for (const ColumnType type : types) {
        design.columns.push_back({Text(1, name), type});
        const bool descending = name % 2 == 0 && type != ColumnType::Numeric;
        design.indexes.push_back({Text(1, name), {{Text(1, name), descending}}});
        ++name;
    }
    design.indexes.push_back({u"Toate", {{u"B", true}, {u"D"}, {u"L", true}}, false, true});
    Table table = database.createTable(design, kSomeDay);
    for (int i = 0; i < 40; ++i)
        table.append({{u"A", i % 2 == 0},
                      {u"B", i % 5},
                      {u"C", -i},
                      {u"D", i * 1000},
                      {u"E", i * 1.5},
                      {u"F", -i / 4.0},
                      {u"H", DateTime{i * 1.5}},
                      {u"I", Bytes(static_cast<std::size_t>(i), 9)},
                      {u"K", i},
                      {u"L", Text(static_cast<std::size_t>(60 + i), u'ă') + u"-'" +
                                 static_cast<char16_t>(u'!' + i)}});
}

/// Long values of every form, some of them gone or replaced.
inline void makeLongValuesShape(Database &database)
{
    Table table = database.createTable({u"Lungi",
                                        {{u"Nr", ColumnType::Long, 0, true},
                                         {u"Text", ColumnType::Memo},
                                         {u"Poza", ColumnType::Ole}},
                                        {{u"Nr", {{u"Nr"}}, true}}},
                                       kSomeDay);
    for (const std::size_t length : {0U, 20U, 31U, 60U, 500U, 3000U, 4070U, 5000U, 9000U, 12U})
        table.append({{u"Text", Text(length, u'a') + u"ș"}, {u"Poza", Bytes(length, 5)}});
    eraseEvery(table, 4);
    Cursor cursor = table.records();
    cursor.last();
    cursor.update({{u"Text", Text(6000, u'z')}});
}

/// A definition of many pages, with the place of a dropped table before it.
inline void makeWideShape(Database &database)
{
    database.createTable(tabelDesign(u"Vechi"), kSomeDay);
    TableDesign design;
    design.name = u"Lat";
    const ColumnType types[] = {ColumnType::Integer, ColumnType::Text, ColumnType::Boolean,
                                ColumnType::Double};
    for (int i = 0; i < 200; ++i)
        design.columns.push_back({u"Coloana " + fromUtf8(std::to_string(i)), types[i % 4], 30});
    design.indexes = {{u"Prima", {{u"Coloana 0"}}, true}};
    Table table = database.createTable(design, kSomeDay);
    for (int row = 0; row < 6; ++row) {
        Assignments values;
        for (int i = 0; i < 200; i += row % 3 + 1)
            values.emplace_back(design.columns[static_cast<std::size_t>(i)].name, row);
        table.append(values);
    }
}

/// Forms that only other programs write: a row behind a pointer, a compressed leaf; and the map of
/// a table that began to reach beyond its first row.
inline Bytes foreignShape(const std::filesystem::path &path)
{
    FileImage image(bytesOf(path));
    image.leavePointerBehind(image.firstDataPage(), 3);
    const TableDefinition table = image.definition();
    const PageNo root = table.realIndexes.front().root;
    image.writeCompressedLeaf(root, image.indexPage(root).entries());
    writeFile(path, image.bytes());

    Session session(makeSystemFiles(), path, unsynced());
    Pager &pager = session.pager();
    pager.begin();
    UsageMap pages(pager, table.ownedPages);
    pages.insert(600); // lies behind what the map's row can hold
    pages.erase(600);
    pager.commit();
    return bytesOf(path);
}

/// The files that recorded damage names by their place in this list.
inline std::vector<Bytes> makeShapes()
{
    const TemporaryFolder folder;
    std::vector<Bytes> shapes;
    int number = 0;
    const auto make = [&](auto &&fill) {
        const auto path = folder / (std::to_string(number++) + ".mdb").c_str();
        Database database = Database::create(path, kSomeDay, unsynced());
        inTransaction(database, [&] { fill(database); });
        return path;
    };
    shapes.push_back(bytesOf(make(makeStationShape)));
    shapes.push_back(bytesOf(make(makeKeysShape)));
    shapes.push_back(bytesOf(make(makeLongValuesShape)));
    {
        const auto path = make(makeWideShape);
        Database::open(path, unsynced()).dropTable(u"Vechi");
        shapes.push_back(bytesOf(path));
    }
    shapes.push_back(foreignShape(make([](Database &database) {
        Table table =
            database.createTable({u"Straina",
                                  {{u"Id", ColumnType::Long}, {u"Nume", ColumnType::Text, 100}},
                                  {{u"Prim", {{u"Id"}}, true}}},
                                 kSomeDay);
        for (int i = 0; i < 60; ++i)
            table.append({{u"Id", i}, {u"Nume", Text(8, u'n')}});
    })));
    return shapes;
}

} // namespace jet
