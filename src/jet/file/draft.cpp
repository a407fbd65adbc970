#include "jet/file/draft.h"

#include "jet/error.h"
#include "jet/file/journal_file.h"

#include <array>
#include <string>
#include <utility>

namespace jet
{
namespace
{

/// In page 0 of a draft, where a database has zeros.
constexpr std::array<std::uint8_t, 8> kMark{'J', 'E', 'T', 'D', 'R', 'A', 'F', 'T'};
constexpr std::size_t kMarkOffset = 0xA0;

/// True for an empty file, too: an attempt may have been interrupted there.
bool isDraft(File &file)
{
    std::array<std::uint8_t, kMark.size()> found{};
    return file.size() == 0 || (file.read(kMarkOffset, found) == found.size() && found == kMark);
}

} // namespace

Draft::Draft(FileSystem &files, std::filesystem::path target, const char *extension)
    : m_files(files), m_target(std::move(target)), m_path(chooseName(extension))
{
    const bool replaces = m_files.exists(m_target);
    try {
        m_file = m_files.open(m_path, replaces ? FileSystem::Access::CreatePrivate
                                               : FileSystem::Access::CreateNew);
    } catch (const Error &error) {
        if (error.code() == ErrorCode::FileNotFound)
            throwFileNotFound(m_target); // the folder is missing
        if (error.code() == ErrorCode::FileExists)
            throwInUse();
        throw;
    }
    // To others a file without a lock is a left-over draft.
    if (!m_file->tryLock(LockPart::Opener, LockMode::Exclusive) || !m_file->isNamed(m_path))
        throwInUse();
    if (replaces)
        m_files.matchAccess(m_path, m_target);
}

Draft::~Draft()
{
    if (m_isInPlace)
        return;
    // A draft that cannot be removed is removed by the next attempt.
    try {
        m_file->releaseName();
        m_files.remove(m_path);
    } catch (const Error &) {
        return;
    }
}

void Draft::replaceTarget()
{
    finish();
    m_files.replace(m_path, m_target);
    m_isInPlace = true;
    m_files.syncFolder(m_target.parent_path());
}

void Draft::takeFreeName()
{
    if (m_files.exists(m_target))
        throwFileExists(m_target);
    finish();
    m_files.place(m_path, m_target);
    m_isInPlace = true;
    m_files.syncFolder(m_target.parent_path());
}

void Draft::mark(MutablePageBytes headerPage)
{
    writeBytes(headerPage, kMarkOffset, kMark);
}

/// Prepares both the draft and its target.
void Draft::finish()
{
    m_file->write(kMarkOffset, std::array<std::uint8_t, kMark.size()>{});
    m_file->sync();
    m_file->releaseName();
    // A journal belongs to the replaced file and must not be applied to the new one.
    if (JournalFile(m_files, m_target, {}).remove())
        m_files.syncFolder(m_target.parent_path());
}

/// The first name that is free or has the draft of an interrupted attempt.
std::filesystem::path Draft::chooseName(const std::string &extension)
{
    for (int number = 1;; ++number) {
        std::filesystem::path name = m_target;
        name += number == 1 ? extension : extension + std::to_string(number);
        if (!m_files.exists(name) || removeLeftOver(name))
            return name;
    }
}

/// False for a file that is not a draft.
bool Draft::removeLeftOver(const std::filesystem::path &name)
{
    const auto file = m_files.open(name, FileSystem::Access::Write);
    if (!isDraft(*file))
        return false;
    if (!file->tryLock(LockPart::Opener, LockMode::Exclusive))
        throwInUse();
    file->releaseName();
    m_files.remove(name);
    return true;
}

void Draft::throwInUse() const
{
    throw Error(ErrorCode::InUse,
                "Could not use '" + displayName(m_target) + "': another program is making it.");
}

} // namespace jet
