#include "jet/journal_file.h"

namespace jet
{

JournalFile::JournalFile(FileSystem &files, const std::filesystem::path &database,
                         Durability durability)
    : m_files(files), m_path(journalPath(database)), m_durability(durability)
{
}

bool JournalFile::isEmpty() const
{
    return !m_files.exists(m_path) || m_files.open(m_path, FileSystem::Access::Read)->size() == 0;
}

std::optional<Journal> JournalFile::read() const
{
    const auto file = m_files.open(m_path, FileSystem::Access::Read);
    return Journal::read(*file);
}

std::unique_ptr<File> JournalFile::open()
{
    const bool isNew = !m_files.exists(m_path);
    auto file = m_files.open(m_path, FileSystem::Access::Create);
    m_wasOpened = true;
    // Without its name on the disk the journal would be lost with the power.
    if (isNew && m_durability == Durability::Synced)
        m_files.syncFolder(m_path.parent_path());
    return file;
}

void JournalFile::removeWhenEmpty()
{
    if (isEmpty())
        m_files.remove(m_path);
}

} // namespace jet
