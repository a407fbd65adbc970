#pragma once

#include "jet/file/journal.h"
#include "jet/open_options.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace jet
{

/// The file of a database's journal: where it stands, whether its name is on the disk, its end.
class JournalFile
{
public:
    /// Keeps a reference to `files`.
    JournalFile(FileSystem &files, std::filesystem::path database, const OpenOptions &options);

    /// True when there is a statement in it, which may not be whole.
    bool hasStatement();
    /// Nothing when there is no whole one.
    std::optional<Journal> read();
    /// Makes the file when it is missing. Afterwards the statement will be there whatever happens,
    /// as far as the durability asks for that. On failure there is none.
    void write(PageNo pagesBefore, PageNo pagesAfter, std::span<const PageWitness> witnesses,
               std::span<const PageChange> changes);
    /// Forgets the statement, once it is carried out or undone. A failure harms nothing, see
    /// journal.h.
    void clear() noexcept;
    /// Gives a journal that is of no use here another name; returns that.
    std::filesystem::path keepAside();
    /// Closes the file.
    void release() { m_file.reset(); }

    const std::filesystem::path &path() const { return m_path; }

private:
    bool find();
    void make();
    void makeNameDurable();

    FileSystem &m_files;
    std::filesystem::path m_database;
    std::filesystem::path m_path;
    OpenOptions m_options;
    std::unique_ptr<File> m_file;
    JournalMark m_mark{};    ///< at the start of m_file
    std::uint64_t m_end = 0; ///< of the statement written last
};

} // namespace jet
