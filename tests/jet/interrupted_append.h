#pragma once

#include "tests/jet/file_image.h"
#include "tests/jet/memory_disk.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace jet
{

/// Appends samples in one transaction and leaves the files as a program does that was stopped as
/// soon as a part of it had reached the database.
inline void interruptAppend(const std::filesystem::path &path, std::int32_t first,
                            std::int32_t last)
{
    const Bytes before = bytesOf(path);
    MemoryDisk disk;
    const auto content = [&]() -> Bytes & { return disk.files[path.string()].content; };
    const auto untouched = [&] {
        return std::equal(before.begin(), before.end(), content().begin());
    };
    for (long stop = 1; stop == 1 || untouched(); ++stop) {
        disk = {};
        content() = before;
        disk.setFault(MemoryDisk::Fault::Stop, stop, 512);
        EXPECT_EQ(errorOf([&] {
                      auto database = Database::open(path, unsynced(),
                                                     std::make_unique<MemoryFileSystem>(disk));
                      Table table = database.table(u"Tabel");
                      inTransaction(database, [&] { appendSamples(table, first, last); });
                  }),
                  ErrorCode::DiskError);
    }
    for (const auto &[name, file] : disk.files)
        writeFile(name, file.content);
}

} // namespace jet
