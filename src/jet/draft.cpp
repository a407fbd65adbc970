#include "jet/draft.h"

#include "jet/error.h"
#include "jet/journal.h"

#include <utility>

namespace jet
{

Draft::Draft(FileSystem &files, std::filesystem::path target, const char *extension)
    : m_files(files), m_target(std::move(target)), m_path(m_target)
{
    m_path += extension;
    removeDraft();
}

Draft::~Draft()
{
    // A draft that stays behind is removed by the next attempt.
    try {
        removeDraft();
    } catch (const Error &) {
        return;
    }
}

void Draft::putInPlace()
{
    m_files.open(m_path, FileSystem::Access::Write)->sync();
    const std::filesystem::path folder = m_target.parent_path();
    if (const auto journal = journalPath(m_target); m_files.exists(journal)) {
        // It belongs to the file that had this name, and must not come back beside the new one.
        m_files.remove(journal);
        m_files.syncFolder(folder);
    }
    if (m_files.exists(m_target))
        m_files.matchAccess(m_path, m_target);
    m_files.replace(m_path, m_target);
    m_files.syncFolder(folder);
}

void Draft::removeDraft()
{
    m_files.remove(m_path);
    m_files.remove(journalPath(m_path));
}

} // namespace jet
