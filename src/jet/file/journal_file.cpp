#include "jet/file/journal_file.h"

#include "jet/error.h"

#include <algorithm>
#include <string>
#include <utility>

namespace jet
{
namespace
{

/// A larger journal is truncated to this, which returns the space of a long statement.
constexpr std::uint64_t kLargestKept = 1 << 20;
constexpr std::uint64_t kSizeWhenCut = 65536;

} // namespace

JournalFile::JournalFile(FileSystem &files, std::filesystem::path database,
                         const OpenOptions &options)
    : m_files(files), m_database(std::move(database)), m_path(journalPath(m_database)),
      m_options(options)
{
}

/// Opens the existing file; false when there is none.
bool JournalFile::find()
{
    if (m_file && m_file->isNamed(m_path))
        return true;
    m_file.reset();
    if (!m_files.exists(m_path))
        return false;
    try {
        m_file = m_files.open(m_path, m_options.readOnly ? FileSystem::Access::Read
                                                         : FileSystem::Access::Write);
        if (!m_options.readOnly)
            m_files.matchAccess(m_path, m_database); // whose access rights may have changed since
        m_mark = {};
        m_file->read(0, m_mark);
    } catch (const Error &error) {
        if (error.code() != ErrorCode::FileNotFound)
            throw;
        return false; // removed meanwhile
    }
    return true;
}

bool JournalFile::hasStatement()
{
    if (!find())
        return false;
    JournalMark mark{};
    m_file->read(kStatementOffset, mark);
    return mark == kStatementMark || m_mark == kOldStatementMark;
}

/// False for an unrelated file of that name, which must not be overwritten. A journal whose mark
/// was garbled is taken for unrelated, but not while it holds a statement.
bool JournalFile::isOurs()
{
    return m_mark == JournalMark{} || m_mark == kDurableNameMark || hasStatement();
}

std::optional<Journal> JournalFile::read()
{
    return find() ? Journal::read(*m_file) : std::nullopt;
}

void JournalFile::write(PageNo pagesBefore, PageNo pagesAfter,
                        std::span<const PageWitness> witnesses, std::span<const PageChange> changes)
{
    if (find() && !isOurs())
        keepAside();
    if (!m_file)
        make();
    try {
        m_end = Journal::write(*m_file, pagesBefore, pagesAfter, witnesses, changes);
        if (m_options.durability == Durability::Synced) {
            m_file->sync();
            makeNameDurable();
        }
    } catch (const Error &) {
        clear();
        throw;
    }
}

void JournalFile::make()
{
    m_file = m_files.open(m_path, FileSystem::Access::CreatePrivate);
    m_files.matchAccess(m_path, m_database);
    m_mark = {};
}

/// A journal whose name is not durable is lost with the power. That the file exists does not prove
/// that its creator synced the folder; the mark does.
void JournalFile::makeNameDurable()
{
    if (m_mark == kDurableNameMark)
        return;
    m_files.syncFolder(m_path.parent_path());
    m_file->write(0, kDurableNameMark);
    m_mark = kDurableNameMark;
}

void JournalFile::clear() noexcept
{
    if (!m_file)
        return; // another opener has renamed it meanwhile
    try {
        if (m_mark == kOldStatementMark) {
            m_file->resize(0);
            m_mark = {};
            return;
        }
        m_file->write(kStatementOffset, JournalMark{});
        if (std::exchange(m_end, 0) > kLargestKept)
            m_file->resize(kSizeWhenCut);
    } catch (const Error &) {
        return;
    }
}

bool JournalFile::remove()
{
    if (!find() || !isOurs())
        return false;
    release();
    m_files.remove(m_path);
    return true;
}

std::filesystem::path JournalFile::keepAside()
{
    m_file.reset();
    for (int number = 1;; ++number) {
        std::filesystem::path name = m_path;
        name += number == 1 ? ".kept" : ".kept" + std::to_string(number);
        try {
            m_files.place(m_path, name);
            return name;
        } catch (const Error &error) {
            if (error.code() != ErrorCode::FileExists)
                throw;
        }
    }
}

} // namespace jet
