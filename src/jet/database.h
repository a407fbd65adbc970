#pragma once

#include "jet/finding.h"
#include "jet/open_options.h"
#include "jet/table.h"
#include "jet/table_design.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace jet
{

class FileSystem;
class Session;

/// An open database file (Jet 4, .mdb). Any number may be open on one file, in one process or
/// several: each statement sees the file before or after another opener's statement, never between.
/// Not thread-safe: use a Database and what comes from it in one thread.
///
/// Every function throws jet::Error; the file is then as it was before the call.
class Database
{
public:
    /// Opens a file. A statement that a stopped program left in the middle is finished or dropped
    /// first. Throws Error(FileNotFound), Error(ReadOnly) when the system denies the access,
    /// Error(NotADatabase), Error(PasswordNeeded), Error(NotSupported) for an encoded file,
    /// Error(InUse), Error(Damaged).
    static Database open(const std::filesystem::path &path, const OpenOptions &options = {});
    /// The same on other files than the system's, for tests.
    static Database open(const std::filesystem::path &path, const OpenOptions &options,
                         std::shared_ptr<FileSystem> files);

    /// Creates a database with empty tables, if any, and opens it; `now` is the creation date in
    /// its system tables. The file appears complete or not at all. Throws Error(FileExists),
    /// Error(FileNotFound) when there is no folder for it, Error(InUse).
    static Database create(const std::filesystem::path &path, DateTime now,
                           const OpenOptions &options = {},
                           const std::vector<TableDesign> &tables = {});

    Database(Database &&) noexcept;
    Database &operator=(Database &&) noexcept;
    /// The file stays open as long as a table, cursor or transaction of it lives.
    ~Database();

    const std::filesystem::path &path() const;

    /// Names of the user's tables in the order of their creation.
    std::vector<Text> tables() const;
    /// Names are case-insensitive. Throws Error(NoSuchTable).
    Table table(const Text &name) const;

    /// Throws Error(ObjectExists), Error(InvalidName), Error(DuplicateItem), Error(NoSuchItem) for
    /// an index on a column that is not there, Error(TooManyColumns), Error(RecordTooLarge),
    /// Error(InvalidArgument) for anything else the format cannot hold.
    Table createTable(const TableDesign &design, DateTime now);
    /// Throws Error(NoSuchTable), Error(TableLocked) while anybody else has the database open.
    void dropTable(const Text &name);
    /// Throws as dropTable() does, Error(ObjectExists), Error(InvalidName).
    void renameTable(const Text &name, const Text &newName, DateTime now);

    /// Checks every page, map, row and index; empty when all of them fit together. A page that
    /// counts as used but belongs to nothing is reported as lost space, which is no damage: the
    /// database program leaves such pages until it compacts a file.
    std::vector<Finding> check() const;

private:
    friend class Transaction;
    friend class Snapshot;
    explicit Database(std::shared_ptr<Session> session);

    std::shared_ptr<Session> m_session;
};

/// Groups statements: commit() stores all of them, or none. One transaction at a time.
class Transaction
{
public:
    /// Throws Error(ReadOnly), Error(InUse) while another opener has one.
    explicit Transaction(Database &database);
    /// Rolls back what was not committed.
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    /// Throws Error(DiskError), Error(DiskFull); nothing is stored then.
    void commit();
    void rollback();

private:
    std::shared_ptr<Session> m_session;
    bool m_running = true;
};

/// While one exists, everything read from the database belongs to one moment: other openers cannot
/// change it and get Error(InUse) after their lock timeout. Reading many rows is also faster inside
/// one.
class Snapshot
{
public:
    explicit Snapshot(const Database &database);
    ~Snapshot();
    Snapshot(const Snapshot &) = delete;
    Snapshot &operator=(const Snapshot &) = delete;

private:
    struct Scope;
    std::unique_ptr<Scope> m_scope;
};

} // namespace jet
