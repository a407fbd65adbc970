#pragma once

#include "jet/bytes.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

// Everything the engine asks of the system it runs on. One pair of classes per system implements
// these interfaces (file_posix.cpp, file_windows.cpp); tests put files in memory in their place.

namespace jet
{

/// A path as messages show it, UTF-8.
std::string displayName(const std::filesystem::path &path);

[[noreturn]] void throwFileNotFound(const std::filesystem::path &path);

/// An open file. Every failure throws Error: DiskFull when there is no room, else DiskError.
class File
{
public:
    virtual ~File() = default;

    /// Fills `bytes` from an offset; the result is less than asked for only at the file's end.
    virtual std::size_t read(std::uint64_t offset, MutableBytes bytes) = 0;
    /// Writes all bytes, making the file longer where needed.
    virtual void write(std::uint64_t offset, ByteView bytes) = 0;
    virtual std::uint64_t size() = 0;
    virtual void resize(std::uint64_t size) = 0;
    /// Returns when everything written so far would survive a loss of power.
    virtual void sync() = 0;
};

/// What openers of one database agree on. The lock file stands beside the database as name.ldb;
/// only locks on its bytes count, so one that a dead process left behind hinders nobody.
class LockFile
{
public:
    enum class Part {
        Opener, ///< shared by every opener; exclusive while tables are dropped or renamed. These
                ///< are the bytes that the database program itself locks, so it stays out meanwhile
        Writer, ///< exclusive during a write transaction
        Pages,  ///< shared while pages are read, exclusive while they are written
        Turn,   ///< on the way to Pages: who waits to write keeps new readers behind it
    };
    enum class Mode { Shared, Exclusive };

    /// Gives up every lock and removes the file when nobody else uses it.
    virtual ~LockFile() = default;

    /// Takes a lock or changes the mode of one already held; false when another opener is in the
    /// way (a lock held before is then still held; not on Windows when a program that
    /// does not know these rules slips in between the two). Locks belong to this object, not to
    /// the process.
    virtual bool tryLock(Part part, Mode mode) = 0;
    virtual void unlock(Part part) = 0;

    /// A number that every writer changes, so that others know when what they have read is old.
    virtual std::uint64_t stamp() = 0;
    virtual void setStamp(std::uint64_t stamp) = 0;

    /// Tries until the time is over; false then.
    bool lock(Part part, Mode mode, std::chrono::milliseconds timeout);
};

class FileSystem
{
public:
    enum class Access {
        Read,
        Write,  ///< the file must exist
        Create, ///< made when missing
    };

    virtual ~FileSystem() = default;

    /// Throws Error(FileNotFound), Error(ReadOnly) when the system denies the access.
    virtual std::unique_ptr<File> open(const std::filesystem::path &path, Access access) = 0;
    virtual bool exists(const std::filesystem::path &path) = 0;
    /// A missing file is no error.
    virtual void remove(const std::filesystem::path &path) = 0;
    /// Gives a file another name, replacing what had that name, in one step.
    virtual void replace(const std::filesystem::path &from, const std::filesystem::path &to) = 0;
    /// The file that a name leads to, where names can be links.
    virtual std::filesystem::path resolve(const std::filesystem::path &path) { return path; }
    /// Gives a file that was just made the owner and the rights of another, as far as the system
    /// lets: whoever may use the one may use the other.
    virtual void matchAccess(const std::filesystem::path & /*file*/,
                             const std::filesystem::path & /*model*/)
    {
    }
    /// Returns when names made, removed or replaced in the folder would survive a loss of power, as
    /// far as the file system can be asked for that.
    virtual void syncFolder(const std::filesystem::path &folder) = 0;
    /// Never null. With Access::Read on a folder where no file can be made the locks are dummies.
    virtual std::unique_ptr<LockFile> openLock(const std::filesystem::path &path,
                                               Access access) = 0;
};

/// Where the lock file of a database stands.
std::filesystem::path lockPath(std::filesystem::path database);

/// For readers in a folder where no lock file can stand, such as a read-only medium.
class NoLockFile final : public LockFile
{
public:
    bool tryLock(Part, Mode) override { return true; }
    void unlock(Part) override {}
    std::uint64_t stamp() override { return 0; }
    void setStamp(std::uint64_t) override {}
};

/// The files of the system the program runs on.
std::unique_ptr<FileSystem> makeSystemFiles();

} // namespace jet
