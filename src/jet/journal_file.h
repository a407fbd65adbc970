#pragma once

#include "jet/journal.h"
#include "jet/open_options.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace jet
{

/// The file of a database's journal: where it stands, whether there is one, and its end.
class JournalFile
{
public:
    /// Keeps a reference to `files`.
    JournalFile(FileSystem &files, std::filesystem::path database, Durability durability);

    /// True as well when there is no file.
    bool isEmpty() const;
    /// What is in it, without changing it; nothing when that is not a whole statement.
    std::optional<Journal> read() const;
    /// For writing; made when missing.
    std::unique_ptr<File> open();
    void removeWhenEmpty();
    /// True when open() has been called, so that there may be a file to remove.
    bool wasOpened() const { return m_wasOpened; }

private:
    std::unique_ptr<File> openForReading() const;

    FileSystem &m_files;
    std::filesystem::path m_database;
    std::filesystem::path m_path;
    Durability m_durability;
    bool m_wasOpened = false;
    bool m_nameIsDurable = false;
};

} // namespace jet
