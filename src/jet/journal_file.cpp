#include "jet/journal_file.h"

#include "jet/error.h"

#include <utility>

namespace jet
{

JournalFile::JournalFile(FileSystem &files, std::filesystem::path database, Durability durability)
    : m_files(files), m_database(std::move(database)), m_path(journalPath(m_database)),
      m_durability(durability)
{
}

/// Null when there is none.
std::unique_ptr<File> JournalFile::openForReading() const
{
    if (!m_files.exists(m_path))
        return nullptr;
    try {
        return m_files.open(m_path, FileSystem::Access::Read);
    } catch (const Error &error) {
        if (error.code() != ErrorCode::FileNotFound)
            throw;
        return nullptr; // removed meanwhile
    }
}

bool JournalFile::isEmpty() const
{
    const auto file = openForReading();
    return !file || file->size() == 0;
}

std::optional<Journal> JournalFile::read() const
{
    const auto file = openForReading();
    return file ? Journal::read(*file) : std::nullopt;
}

std::unique_ptr<File> JournalFile::open()
{
    const bool isNew = !m_files.exists(m_path);
    auto file = m_files.open(m_path, FileSystem::Access::Create);
    m_wasOpened = true;
    if (isNew) {
        m_files.matchAccess(m_path, m_database);
        m_nameIsDurable = false;
    }
    // Without its name on the disk the journal would be lost with the power. A file that was found
    // does not show whether its maker came as far as that.
    if (!m_nameIsDurable && m_durability == Durability::Synced) {
        m_files.syncFolder(m_path.parent_path());
        m_nameIsDurable = true;
    }
    return file;
}

void JournalFile::removeWhenEmpty()
{
    if (isEmpty())
        m_files.remove(m_path);
}

} // namespace jet
