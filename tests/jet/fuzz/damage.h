#pragma once

#include "tests/jet/fuzz/shapes.h"
#include "tests/jet/memory_disk.h"

#include <vector>

// Damaged files for the fuzzer and for the tests: a sound database and bytes of it replaced.
// Anything may happen to such a file but a crash, an endless loop or an error that is no
// jet::Error.

namespace jet
{

inline constexpr const char *kDamagedFile = "folder/damaged.mdb";
inline constexpr const char *kDamagedJournal = "folder/damaged.mdb.jrn";

inline MemoryDisk diskWith(const Bytes &content)
{
    MemoryDisk disk;
    disk.files[kDamagedFile].content = content;
    return disk;
}

/// Replaces bytes: each four bytes of `patches` are u24 offset, u8 new value.
inline void damage(Bytes &content, ByteView patches)
{
    for (std::size_t at = 0; at + 4 <= patches.size(); at += 4)
        content[readU24(patches, at) % content.size()] = patches[at + 3];
}

template <typename Step>
void ignoringErrors(Step &&step)
{
    try {
        step();
    } catch (const Error &) {
        return;
    }
}

inline void readEverything(const Database &database)
{
    ignoringErrors([&] { database.check(); });
    for (const Text &name : database.tables()) {
        ignoringErrors([&] { rowsOf(database.table(name).records()); });
        ignoringErrors([&] {
            const Table table = database.table(name);
            for (const IndexDesign &index : table.design().indexes)
                ignoringErrors([&] { rowsOf(table.byIndex(index.name, Order::Descending)); });
            ignoringErrors([&] { rowsOf(table.sortedBy(table.design().columns.back().name)); });
        });
    }
}

inline void changeEverything(Database &database)
{
    for (const Text &name : database.tables()) {
        ignoringErrors([&] {
            Table table = database.table(name);
            for (int i = 0; i < 3; ++i)
                ignoringErrors([&] {
                    table.append({{table.design().columns.front().name, 100000 + i}});
                });
            Cursor cursor = table.records();
            for (int i = 0; i < 20 && cursor.next(); ++i)
                ignoringErrors([&] {
                    if (i % 2 == 0)
                        cursor.erase();
                    else
                        cursor.update({{table.design().columns.front().name, 200000 + i}});
                });
        });
        ignoringErrors([&] { database.table(name).deleteAll(); });
        ignoringErrors([&] { database.renameTable(name, name + u"2", kSomeDay); });
        ignoringErrors([&] { database.dropTable(name + u"2"); });
    }
    ignoringErrors([&] { database.createTable(tabelDesign(u"Nou"), kSomeDay); });
}

/// Opens the file, reads all of it and then changes all of it.
inline void exercise(MemoryDisk &disk)
{
    ignoringErrors([&] {
        Database database =
            Database::open(kDamagedFile, unsynced(), std::make_unique<MemoryFileSystem>(disk));
        readEverything(database);
        changeEverything(database);
    });
}

/// A file as a stopped program leaves it, with part of an append in it and all of it in the
/// journal.
inline MemoryDisk interruptedDisk(const Bytes &content, long writes)
{
    MemoryDisk disk = diskWith(content);
    ignoringErrors([&] {
        Database database =
            Database::open(kDamagedFile, unsynced(), std::make_unique<MemoryFileSystem>(disk));
        Table table = database.table(database.tables().front());
        const Row row = rowsOf(table.records()).back();
        Transaction transaction(database);
        table.deleteAll();
        for (int i = 0; i < 40; ++i)
            ignoringErrors([&] { table.appendRow(row); });
        disk.setFault(MemoryDisk::Fault::Stop, writes, 700);
        transaction.commit();
    });
    disk.endProgram();
    return disk;
}

/// What the fuzzer runs and the tests repeat: the number of a shape, from 128 on with a statement
/// left in its journal, then patches, which reach from the end of the file on into the journal.
inline void exerciseDamaged(const std::vector<Bytes> &shapes, ByteView input)
{
    if (input.empty())
        return;
    const std::size_t number = input.front() % 128 % shapes.size();
    if (input.front() < 128) {
        Bytes content = shapes[number];
        damage(content, input.subspan(1));
        MemoryDisk disk = diskWith(content);
        exercise(disk);
        return;
    }
    static std::map<std::size_t, MemoryDisk> interrupted; // for millions of runs
    const auto found = interrupted.try_emplace(number, interruptedDisk(shapes[number], 5)).first;
    MemoryDisk disk = found->second;
    Bytes &content = disk.files[kDamagedFile].content;
    Bytes &journal = disk.files[kDamagedJournal].content;
    const std::size_t size = content.size();
    Bytes both = content;
    appendBytes(both, journal);
    damage(both, input.subspan(1));
    std::copy_n(both.begin(), size, content.begin());
    std::copy(both.begin() + static_cast<std::ptrdiff_t>(size), both.end(), journal.begin());
    hashJournal(journal, kStatementOffset);
    exercise(disk);
}

} // namespace jet
