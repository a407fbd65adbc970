#pragma once

#include "jet/value.h"

#include <filesystem>
#include <memory>

namespace jet
{

class FileSystem;

/// Writes every table of a database into a new file, without lost space, and puts it in place of
/// the old one in one step. Nobody else may have the file open. Relationships, queries and other
/// objects of the database program are not carried over, so a file that has any, or a table that
/// the engine cannot make, is refused with Error(NotSupported), and a damaged one with
/// Error(Damaged), as what cannot be read would be lost. Throws Error(InUse), Error(DiskFull); the
/// old file is then as it was. Keeps owner and permissions of the file, best effort.
void compactDatabase(const std::filesystem::path &path, DateTime now);
/// The same on other files than the system's, for tests.
void compactDatabase(const std::filesystem::path &path, DateTime now,
                     const std::shared_ptr<FileSystem> &files);

} // namespace jet
