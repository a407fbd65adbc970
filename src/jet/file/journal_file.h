#pragma once

#include "jet/file/journal.h"
#include "jet/open_options.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace jet
{

/// The file of a database's journal: its path, whether its name is durable, its end.
class JournalFile
{
public:
    /// Keeps a reference to `files`.
    JournalFile(FileSystem &files, std::filesystem::path database, const OpenOptions &options);

    /// True when it holds a statement, which may be incomplete.
    bool hasStatement();
    /// nullopt when there is no complete one.
    std::optional<Journal> read();
    /// Creates the file when it is missing; keeps another file of that name aside. On return the
    /// statement is as durable as the options ask for; on failure the journal holds none.
    void write(PageNo pagesBefore, PageNo pagesAfter, std::span<const PageWitness> witnesses,
               std::span<const PageChange> changes);
    /// Discards the statement, if any, after it was carried out or undone. Best effort, see
    /// journal.h.
    void clear() noexcept;
    /// Renames a journal that does not fit the database; returns the new path.
    std::filesystem::path keepAside();
    /// Removes the file when it is a journal; true then.
    bool remove();
    /// Closes the file.
    void release() { m_file.reset(); }

    const std::filesystem::path &path() const { return m_path; }

private:
    bool find();
    bool isOurs();
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
