#include "jet/file/draft.h"

#include "jet/error.h"
#include "jet/file/journal.h"

#include <utility>

namespace jet
{

Draft::Draft(FileSystem &files, std::filesystem::path target, const char *extension)
    : m_files(files), m_target(std::move(target)), m_path(m_target)
{
    m_path += extension;
    removeLeftOver();
    const bool replaces = m_files.exists(m_target);
    try {
        m_file = m_files.open(m_path, replaces ? FileSystem::Access::CreatePrivate
                                               : FileSystem::Access::CreateNew);
    } catch (const Error &error) {
        if (error.code() == ErrorCode::FileNotFound)
            throwFileNotFound(m_target); // it is the folder that is missing
        if (error.code() == ErrorCode::FileExists)
            throwInUse();
        throw;
    }
    // Others take a file without a lock for one that was left over.
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
        removeFiles();
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

/// Prepares both the draft and its target.
void Draft::finish()
{
    m_file->sync();
    m_file->releaseName();
    if (const auto journal = journalPath(m_target); m_files.exists(journal)) {
        // It belongs to the replaced file and must not be applied to the new one.
        m_files.remove(journal);
        m_files.syncFolder(m_target.parent_path());
    }
}

void Draft::removeLeftOver()
{
    if (!m_files.exists(m_path))
        return;
    const auto file = m_files.open(m_path, FileSystem::Access::Write);
    if (!file->tryLock(LockPart::Opener, LockMode::Exclusive))
        throwInUse();
    file->releaseName();
    removeFiles();
}

void Draft::removeFiles()
{
    m_files.remove(m_path);
    m_files.remove(journalPath(m_path)); // earlier versions made one
}

void Draft::throwInUse() const
{
    throw Error(ErrorCode::InUse,
                "Could not use '" + displayName(m_target) + "': another program is making it.");
}

} // namespace jet
