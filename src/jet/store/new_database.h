#pragma once

#include "jet/file/draft.h"
#include "jet/table_design.h"
#include "jet/value.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace jet
{

/// Creates a database file with its four system tables and empty tables of the designs. It is built
/// as a draft and appears complete. Throws Error(FileExists), Error(FileNotFound) when there is no
/// folder for it, Error(InUse), and what makeDefinition() throws. Tests pass `files` of their own.
void makeNewDatabase(const std::filesystem::path &path, DateTime now,
                     const std::shared_ptr<FileSystem> &files,
                     const std::vector<TableDesign> &tables = {});

/// The same into a draft.
void writeNewDatabase(Draft &draft, DateTime now, const std::shared_ptr<FileSystem> &files,
                      const std::vector<TableDesign> &tables = {});

} // namespace jet
