#pragma once

#include "tests/jet/memory_disk.h"
#include "tests/jet/sample_database.h"

#include <fstream>
#include <string>

// Damaged files for the fuzzer and for the tests: a sound database and bytes of it replaced.
// Anything may happen to such a file but a crash, an endless loop or an error that is no
// jet::Error.

namespace jet
{

inline constexpr const char *kDamagedFile = "folder/damaged.mdb";

/// A database on a disk in memory, open to every kind of page: tables with split indexes, text and
/// composite keys, long values of each form, deleted rows.
inline MemoryDisk damageableDisk()
{
    const TemporaryFolder folder;
    const auto path = folder / "sound.mdb";
    {
        Database database = Database::create(path, kSomeDay, unsynced());
        Transaction transaction(database);
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
        Cursor cursor = notes.records();
        for (int i = 0; cursor.next(); ++i) {
            if (i % 4 == 0)
                cursor.erase();
        }
        transaction.commit();
    }
    std::ifstream file(path, std::ios::binary);
    MemoryDisk disk;
    disk.files[kDamagedFile].content.assign(std::istreambuf_iterator<char>(file), {});
    return disk;
}

/// Replaces bytes: each four bytes of `patches` are u24 offset, u8 new value.
inline void damage(MemoryDisk &disk, ByteView patches)
{
    Bytes &content = disk.files[kDamagedFile].content;
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

} // namespace jet
