#pragma once

#include "jet/format/bytes.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

// Everything the engine asks of the operating system. Each system implements these interfaces
// (file_posix.cpp, file_windows.cpp); tests substitute files in memory.

namespace jet
{

/// A path for messages, UTF-8.
std::string displayName(const std::filesystem::path &path);

[[noreturn]] void throwFileNotFound(const std::filesystem::path &path);
[[noreturn]] void throwFileExists(const std::filesystem::path &path);

/// What the openers of one database lock, on the open file itself, so that the locks hold whatever
/// name it was opened by.
enum class LockPart {
    Opener, ///< shared by every opener; exclusive while tables are dropped or renamed
    Writer, ///< exclusive during a write transaction; only its holder changes pages
    Pages,  ///< shared while pages are read, exclusive while they are written
    Turn,   ///< taken before Pages: a waiting writer blocks new readers with it
};
enum class LockMode { Shared, Exclusive };

/// An open file. Failures throw Error(DiskFull) or Error(DiskError).
class File
{
public:
    /// Releases every lock.
    virtual ~File() = default;

    /// Reads into `bytes`; returns the number of bytes read, fewer than asked for only at the
    /// file's end.
    virtual std::size_t read(std::uint64_t offset, MutableBytes bytes) = 0;
    /// Writes all bytes and extends the file if necessary.
    virtual void write(std::uint64_t offset, ByteView bytes) = 0;
    virtual std::uint64_t size() = 0;
    virtual void resize(std::uint64_t size) = 0;
    /// Returns when everything written so far would survive a loss of power.
    virtual void sync() = 0;

    /// Takes a lock or changes the mode of one already held; false when another opener's lock
    /// conflicts (a lock held before is then still held). Locks belong to this object, not to the
    /// process. A file opened for reading takes shared locks only.
    virtual bool tryLock(LockPart part, LockMode mode) = 0;
    virtual void unlock(LockPart part) = 0;
    /// Retries until the timeout; false then.
    bool lock(LockPart part, LockMode mode, std::chrono::milliseconds timeout);

    /// True while a path leads to this file.
    virtual bool isNamed(const std::filesystem::path &path) = 0;
    /// Lets another file take this one's name. Only the destructor may follow; until then the locks
    /// are kept where the system allows it.
    virtual void releaseName() {}
};

/// The file beside a database, name.ldb, in which the database program locks a byte for each of its
/// users. The engine's openers take shared locks on all those bytes, so program and engine exclude
/// each other; among themselves openers use the locks on the database (LockPart).
///
/// It is created when missing and removed by the last opener. Any other file of that name is locked
/// in the same way, but neither changed nor removed.
class LockFile
{
public:
    virtual ~LockFile() = default;

    /// True when this opener created it.
    virtual bool isNew() const = 0;
    /// False when the lock of another program or opener conflicts.
    virtual bool tryLock(LockMode mode) = 0;
    bool lock(LockMode mode, std::chrono::milliseconds timeout);
    /// False when it was removed by hand, so that new openers would lock another file.
    virtual bool isNamed() = 0;
};

class FileSystem
{
public:
    enum class Access {
        Read,
        Write,         ///< the file must exist
        Create,        ///< made when missing
        CreateNew,     ///< must not exist: Error(FileExists)
        CreatePrivate, ///< likewise; nobody else may read it until matchAccess()
    };

    virtual ~FileSystem() = default;

    /// Throws Error(FileNotFound), Error(ReadOnly) when the system denies the access.
    virtual std::unique_ptr<File> open(const std::filesystem::path &path, Access access) = 0;
    virtual bool exists(const std::filesystem::path &path) = 0;
    /// A missing file is no error.
    virtual void remove(const std::filesystem::path &path) = 0;
    /// Renames a file, atomically replacing what has that name.
    virtual void replace(const std::filesystem::path &from, const std::filesystem::path &to) = 0;
    /// Renames a file to a free name. Throws Error(FileExists).
    virtual void place(const std::filesystem::path &from, const std::filesystem::path &to) = 0;
    /// The file that a path leads to, where it can be a link.
    virtual std::filesystem::path resolve(const std::filesystem::path &path) { return path; }
    /// Gives a new file the owner, the group and the permissions of another, best effort: whoever
    /// may use the one may use the other.
    virtual void matchAccess(const std::filesystem::path & /*file*/,
                             const std::filesystem::path & /*model*/)
    {
    }
    /// Returns when names created, removed or replaced in the folder would survive a loss of power,
    /// as far as the file system supports it.
    virtual void syncFolder(const std::filesystem::path &folder) = 0;
    /// Null with Access::Read where no lock file can be created.
    virtual std::unique_ptr<LockFile> openLock(const std::filesystem::path &path,
                                               Access access) = 0;
};

/// The path of a database's lock file.
std::filesystem::path lockPath(std::filesystem::path database);

/// The files of the operating system.
std::unique_ptr<FileSystem> makeSystemFiles();

} // namespace jet
