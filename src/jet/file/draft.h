#pragma once

#include "jet/file/file.h"
#include "jet/format/page.h"

#include <filesystem>
#include <memory>
#include <string>

namespace jet
{

/// A database file that is built under a temporary name and then renamed to its target atomically,
/// so that nobody ever opens an incomplete one. Only one draft of a target can exist at a time.
/// When the target exists, whoever may not read it may not read the draft either.
class Draft
{
public:
    /// Creates the empty file; its name is the target's with `extension` appended, and a number
    /// when another file has that name. Removes what an interrupted attempt left there. Throws
    /// Error(InUse) while another program builds one. Keeps a reference to `files`.
    Draft(FileSystem &files, std::filesystem::path target, const char *extension);
    /// Removes a draft that was not renamed.
    ~Draft();
    Draft(const Draft &) = delete;
    Draft &operator=(const Draft &) = delete;

    /// Marks page 0, so that a left-over draft can be told from any other file.
    static void mark(MutablePageBytes headerPage);

    const std::filesystem::path &path() const { return m_path; }
    File &file() { return *m_file; }

    /// Syncs the draft and replaces the target with it. The caller ensures that nobody has the
    /// target open.
    void replaceTarget();
    /// Syncs the draft and renames it to the target, which must not exist. Throws
    /// Error(FileExists).
    void takeFreeName();

private:
    std::filesystem::path chooseName(const std::string &extension);
    bool removeLeftOver(const std::filesystem::path &name);
    void finish();
    [[noreturn]] void throwInUse() const;

    FileSystem &m_files;
    std::filesystem::path m_target;
    std::filesystem::path m_path;
    std::unique_ptr<File> m_file; ///< locked, which keeps others from the name
    bool m_isInPlace = false;
};

} // namespace jet
