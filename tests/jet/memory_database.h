#pragma once

#include "jet/store/new_database.h"
#include "tests/jet/file_image.h"
#include "tests/jet/memory_disk.h"
#include "tests/jet/sample_database.h"

#include <stdexcept>

// A database on a disk in memory, which may fail or be left in the middle of a statement.

namespace jet
{

inline const std::string kFile = "folder/autoclava1.mdb";
inline const std::string kJournal = "folder/autoclava1.mdb.jrn";

inline std::shared_ptr<FileSystem> filesOf(MemoryDisk &disk)
{
    return std::make_shared<MemoryFileSystem>(disk);
}

inline Database openOn(MemoryDisk &disk, const OpenOptions &options = {})
{
    return Database::open(kFile, options, filesOf(disk));
}

/// A disk with a new database that was filled in one transaction.
template <typename Fill>
MemoryDisk diskWith(Fill &&fill)
{
    MemoryDisk disk;
    makeNewDatabase(kFile, kSomeDay, filesOf(disk));
    {
        Database database = openOn(disk, unsynced());
        inTransaction(database, [&] { fill(database); });
    }
    disk.endProgram();
    return disk;
}

inline MemoryDisk diskWithSamples(std::int32_t count)
{
    return diskWith([&](Database &database) { makeTabel(database, count); });
}

/// Carries out a statement, the first since the file was made or copied, as a program that is
/// stopped when parts of it have reached the database: all of it is in the journal then.
template <typename Statement>
void interrupt(MemoryDisk &disk, Statement &&statement)
{
    constexpr long kBehindTwoWrites = 8; // the journal takes the first five operations
    disk.names.erase(kJournal);
    const auto error = errorOf([&] {
        Database database = openOn(disk);
        Transaction transaction(database);
        statement(database);
        disk.setFault(MemoryDisk::Fault::Stop, kBehindTwoWrites);
        transaction.commit();
    });
    if (error != ErrorCode::DiskError)
        throw std::logic_error("The statement was not interrupted.");
    disk.endProgram();
}

} // namespace jet
