#pragma once

#include "jet/file.h"

#include <filesystem>

namespace jet
{

/// A database file that is built under another name and then takes the place of the one it is for
/// in one step, so that nobody ever finds half of it.
class Draft
{
public:
    /// The name is the target's with `extension` behind it; what an interrupted attempt left there
    /// is removed. Keeps a reference to `files`.
    Draft(FileSystem &files, std::filesystem::path target, const char *extension);
    /// Removes what was not put in place.
    ~Draft();
    Draft(const Draft &) = delete;
    Draft &operator=(const Draft &) = delete;

    const std::filesystem::path &path() const { return m_path; }

    /// Brings the draft to the disk and gives it the target's name. The caller sees to it that
    /// nobody has the target open.
    void putInPlace();

private:
    void removeDraft();

    FileSystem &m_files;
    std::filesystem::path m_target;
    std::filesystem::path m_path;
};

} // namespace jet
