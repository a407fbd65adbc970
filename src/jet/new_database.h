#pragma once

#include "jet/file.h"
#include "jet/value.h"

#include <filesystem>

namespace jet
{

/// Makes the file of an empty database with its four system tables. It is built under another name
/// and appears complete. Throws Error(FileExists), Error(FileNotFound) when there is no folder for
/// it, Error(InUse). `files` are the system's but in tests.
void makeNewDatabase(const std::filesystem::path &path, DateTime now,
                     const std::shared_ptr<FileSystem> &files);

} // namespace jet
