#pragma once

#include "jet/file/file.h"

#include <filesystem>
#include <memory>

namespace jet
{

/// A database file that is built under another name and then gets the name it is for in one step,
/// so that nobody ever finds half of it. Only one at a time can be built for a name. When there is
/// a file of that name, nobody may read the draft who may not read that.
class Draft
{
public:
    /// Makes the empty file, whose name is the target's with `extension` behind it; what an
    /// interrupted attempt left there is removed. Throws Error(InUse) while another program builds
    /// one. Keeps a reference to `files`.
    Draft(FileSystem &files, std::filesystem::path target, const char *extension);
    /// Removes what did not get the target's name.
    ~Draft();
    Draft(const Draft &) = delete;
    Draft &operator=(const Draft &) = delete;

    const std::filesystem::path &path() const { return m_path; }
    File &file() { return *m_file; }

    /// Brings the draft to the disk and puts it in the target's place. The caller sees to it that
    /// nobody has the target open.
    void replaceTarget();
    /// Brings the draft to the disk and gives it the target's name. Throws Error(FileExists).
    void takeFreeName();

private:
    void removeLeftOver();
    void removeFiles();
    void finish();
    [[noreturn]] void throwInUse() const;

    FileSystem &m_files;
    std::filesystem::path m_target;
    std::filesystem::path m_path;
    std::unique_ptr<File> m_file; ///< locked, which keeps others from the name
    bool m_isInPlace = false;
};

} // namespace jet
