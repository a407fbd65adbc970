#pragma once

#include "jet/file/draft.h"
#include "jet/table_design.h"
#include "jet/value.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace jet
{

/// Makes the file of a database with its four system tables and empty tables of some designs. It is
/// built under another name and appears complete. Throws Error(FileExists), Error(FileNotFound)
/// when there is no folder for it, Error(InUse), and what makeDefinition() throws. `files` are the
/// system's but in tests.
void makeNewDatabase(const std::filesystem::path &path, DateTime now,
                     const std::shared_ptr<FileSystem> &files,
                     const std::vector<TableDesign> &tables = {});

/// The same into a draft.
void writeNewDatabase(Draft &draft, DateTime now, const std::shared_ptr<FileSystem> &files,
                      const std::vector<TableDesign> &tables = {});

} // namespace jet
