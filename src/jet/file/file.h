#pragma once

#include "jet/format/bytes.h"

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
[[noreturn]] void throwFileExists(const std::filesystem::path &path);

/// What the openers of one database lock, on the open file itself: they meet in it whatever name
/// led them there.
enum class LockPart {
    Opener, ///< shared by every opener; exclusive while tables are dropped or renamed
    Writer, ///< exclusive during a write transaction; only its holder changes pages
    Pages,  ///< shared while pages are read, exclusive while they are written
    Turn,   ///< on the way to Pages: who waits to write keeps new readers behind it
};
enum class LockMode { Shared, Exclusive };

/// An open file. Every failure throws Error: DiskFull when there is no room, else DiskError.
class File
{
public:
    /// Gives up every lock.
    virtual ~File() = default;

    /// Fills `bytes` from an offset; the result is less than asked for only at the file's end.
    virtual std::size_t read(std::uint64_t offset, MutableBytes bytes) = 0;
    /// Writes all bytes, making the file longer where needed.
    virtual void write(std::uint64_t offset, ByteView bytes) = 0;
    virtual std::uint64_t size() = 0;
    virtual void resize(std::uint64_t size) = 0;
    /// Returns when everything written so far would survive a loss of power.
    virtual void sync() = 0;

    /// Takes a lock or changes the mode of one already held; false when another opener is in the
    /// way (a lock held before is then still held). Locks belong to this object, not to the
    /// process. A file opened for reading takes shared ones only.
    virtual bool tryLock(LockPart part, LockMode mode) = 0;
    virtual void unlock(LockPart part) = 0;
    /// Tries until the time is over; false then.
    bool lock(LockPart part, LockMode mode, std::chrono::milliseconds timeout);

    /// True while a name leads to this very file.
    virtual bool isNamed(const std::filesystem::path &path) = 0;
    /// Lets another file take this one's name. Nothing may follow but the destruction; until then
    /// the locks are kept, where the system lets.
    virtual void releaseName() {}
};

/// The file beside a database, name.ldb, in which the database program locks a byte for each of its
/// users. Openers share all those bytes, so that program and engine keep each other out; among
/// themselves they agree by the locks on the database (LockPart).
///
/// It is made when missing and removed by the last one to leave. Anything else of that name is
/// locked in the same way, but neither changed nor removed.
class LockFile
{
public:
    virtual ~LockFile() = default;

    /// True when it was made for this opener.
    virtual bool isNew() const = 0;
    /// False when another program, or another opener, is in the way.
    virtual bool tryLock(LockMode mode) = 0;
    bool lock(LockMode mode, std::chrono::milliseconds timeout);
    /// False when it was removed by hand, so that newcomers would lock another one.
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
    /// Gives a file another name, replacing what had that name, in one step.
    virtual void replace(const std::filesystem::path &from, const std::filesystem::path &to) = 0;
    /// Gives a file a name that must be free. Throws Error(FileExists).
    virtual void place(const std::filesystem::path &from, const std::filesystem::path &to) = 0;
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
    /// Null with Access::Read where no lock file can be made.
    virtual std::unique_ptr<LockFile> openLock(const std::filesystem::path &path,
                                               Access access) = 0;
};

/// Where the lock file of a database stands.
std::filesystem::path lockPath(std::filesystem::path database);

/// The files of the system the program runs on.
std::unique_ptr<FileSystem> makeSystemFiles();

} // namespace jet
