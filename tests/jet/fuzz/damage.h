#pragma once

#include "tests/jet/memory_database.h"

#include <vector>

// Damaged files for the fuzzer and for the tests: a sound database and bytes of it replaced.
// Anything may happen to such a file but a crash, an endless loop or an error that is no
// jet::Error.

namespace jet
{

/// Replaces bytes: each four bytes of `patches` are u24 offset, u8 new value.
inline void damage(Bytes &content, ByteView patches)
{
    for (std::size_t at = 0; at + 4 <= patches.size(); at += 4)
        content[readU24(patches, at) % content.size()] = patches[at + 3];
}

template <typename Step>
void ignoringErrors(Step &&step)
{
    static_cast<void>(errorOf(step));
}

inline void readEverything(const Table &table)
{
    ignoringErrors([&] { rowsOf(table.records()); });
    for (const IndexDesign &index : table.design().indexes)
        ignoringErrors([&] { rowsOf(table.byIndex(index.name, Order::Descending)); });
    rowsOf(table.sortedBy(table.design().columns.back().name));
}

inline void changeEverything(Table table)
{
    const Text first = table.design().columns.front().name;
    for (int i = 0; i < 3; ++i)
        ignoringErrors([&] { table.append({{first, 100000 + i}}); });
    Cursor cursor = table.records();
    for (int i = 0; i < 20 && cursor.next(); ++i)
        ignoringErrors([&] {
            if (i % 2 == 0)
                cursor.erase();
            else
                cursor.update({{first, 200000 + i}});
        });
}

/// Opens the file, reads all of it and then changes all of it.
inline void exercise(MemoryDisk &disk)
{
    ignoringErrors([&] {
        Database database = openOn(disk, unsynced());
        ignoringErrors([&] { database.check(); });
        for (const Text &name : database.tables())
            ignoringErrors([&] { readEverything(database.table(name)); });
        for (const Text &name : database.tables()) {
            ignoringErrors([&] { changeEverything(database.table(name)); });
            ignoringErrors([&] { database.table(name).deleteAll(); });
            ignoringErrors([&] { database.renameTable(name, name + u"2", kSomeDay); });
            ignoringErrors([&] { database.dropTable(name + u"2"); });
        }
        database.createTable(tabelDesign(u"Nou"), kSomeDay);
    });
}

/// What the fuzzer runs and the tests repeat: the number of a shape, then patches, which reach from
/// the end of the file on into the journal.
inline void exerciseDamaged(const std::vector<MemoryDisk> &shapes, ByteView input)
{
    if (input.empty())
        return;
    MemoryDisk disk = shapes[input.front() % shapes.size()];
    Bytes both = disk[kFile];
    const std::size_t size = both.size();
    appendBytes(both, disk[kJournal]);
    damage(both, input.subspan(1));
    std::copy_n(both.begin(), size, disk[kFile].begin());
    std::copy(both.begin() + static_cast<std::ptrdiff_t>(size), both.end(), disk[kJournal].begin());
    hashJournal(disk[kJournal], kStatementOffset);
    exercise(disk);
}

} // namespace jet
