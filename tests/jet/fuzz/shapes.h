#pragma once

#include "tests/jet/memory_database.h"

#include "jet/store/session.h"
#include "jet/store/usage_map.h"

#include <algorithm>
#include <iterator>
#include <vector>

// Sound databases to damage, small and each with other kinds of pages and rows. Recorded damage
// names places in them: whoever changes a shape records its damage anew.

namespace jet
{

/// An index for every type that can have one, ascending and descending in turn, and one over
/// several columns; some rows are deleted.
inline void makeKeysShape(Database &database)
{
    TableDesign design = everyColumnDesign();
    for (const ColumnDesign &column : design.columns) {
        if (column.type == ColumnType::Memo || column.type == ColumnType::Ole)
            continue;
        const bool descending =
            design.indexes.size() % 2 == 0 && column.type != ColumnType::Numeric;
        design.indexes.push_back({column.name, {{column.name, descending}}});
    }
    design.indexes.push_back({u"Toate", {{u"Octet", true}, {u"Id"}, {u"Nume"}}, false, true});
    design.indexes.push_back({u"Da Pret", {{u"Da"}, {u"Pret"}}, false, false, false, true});
    Table table = database.createTable(design, kSomeDay);
    for (int i = 0; i < 40; ++i) {
        const auto length = static_cast<std::size_t>(i);
        table.appendRow({Null{}, i % 2 == 0, i % 5, -i, i * 1.5, -i / 4.0, Null{},
                         DateTime{i * 1.5}, Bytes(length % 8, 9), Text(length % 18, u'ă') + u"-'",
                         Text(length, u't'), Bytes(length, 7), Null{}, i});
    }
    eraseEvery(table, 4);
}

/// A definition of many pages, with the place of a dropped table before it.
inline void makeWideShape(Database &database)
{
    database.createTable(tabelDesign(u"Vechi"), kSomeDay);
    fillWide(database.createTable(wideDesign(u"Lat"), kSomeDay));
    database.dropTable(u"Vechi");
}

/// Forms that only other programs write: a row behind a pointer, a compressed leaf; and the map of
/// a table that began to reach beyond its first row.
inline void makeForeign(MemoryDisk &disk)
{
    FileImage image(disk[kFile]);
    image.leavePointerBehind(image.firstDataPage(), 3);
    const TableDefinition table = image.definition();
    const PageNo root = table.realIndexes.front().root;
    image.writeCompressedLeaf(root, image.indexPage(root).entries());
    disk[kFile] = image.bytes();

    Session session(filesOf(disk), kFile, unsynced());
    Pager &pager = session.pager();
    pager.begin();
    UsageMap pages(pager, table.ownedPages);
    pages.insert(600); // lies behind what the map's row can hold
    pages.erase(600);
    pager.commit();
}

/// A file as a stopped program leaves it.
inline MemoryDisk interrupted(MemoryDisk disk)
{
    interrupt(disk, [](Database &database) {
        Table table = database.table(database.tables().front());
        const Row row = rowsOf(table.records()).back();
        table.deleteAll();
        for (int i = 0; i < 40; ++i)
            errorOf([&] { table.appendRow(row); }); // most are refused: the key is taken
    });
    return disk;
}

/// The disks that recorded damage names by their place in this list; in its second half each once
/// more with a statement left in its journal.
inline std::vector<MemoryDisk> makeShapes()
{
    const auto makeNotes = [](Database &database) {
        const Table notes = database.createTable(notesDesign(), kSomeDay);
        appendNotes(notes, 1, 60);
        changeNotes(notes);
    };
    std::vector<MemoryDisk> shapes{diskWithSamples(40), diskWith(makeKeysShape),
                                   diskWith(makeNotes), diskWith(makeWideShape),
                                   diskWithSamples(40)};
    makeForeign(shapes.back());
    for (MemoryDisk &shape : shapes)
        shape.names.erase(kJournal);
    std::ranges::transform(std::vector(shapes), std::back_inserter(shapes), interrupted);
    return shapes;
}

} // namespace jet
