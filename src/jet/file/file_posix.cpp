#include "jet/file/lock_ranges.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace jet
{
namespace
{

[[noreturn]] void throwSystemError(const std::string &what, int number)
{
    const ErrorCode code =
        number == ENOSPC || number == EDQUOT ? ErrorCode::DiskFull : ErrorCode::DiskError;
    throw Error(code, what + ": " + std::system_category().message(number));
}

/// Owns a descriptor.
class Descriptor
{
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    Descriptor(Descriptor &&other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }

private:
    int m_number;
};

int openFlags(FileSystem::Access access)
{
    switch (access) {
    case FileSystem::Access::Read:
        return O_RDONLY;
    case FileSystem::Access::Write:
        return O_RDWR;
    case FileSystem::Access::Create:
        return O_RDWR | O_CREAT;
    case FileSystem::Access::CreateNew:
    case FileSystem::Access::CreatePrivate:
        return O_RDWR | O_CREAT | O_EXCL;
    }
    return O_RDONLY;
}

/// Closed, with the reason in errno, when that fails.
Descriptor openDescriptor(const std::filesystem::path &path, FileSystem::Access access)
{
    const mode_t rights = access == FileSystem::Access::CreatePrivate ? 0600 : 0666;
    // Non-blocking: opening a pipe would wait for its other end.
    return Descriptor(::open(path.c_str(), openFlags(access) | O_CLOEXEC | O_NONBLOCK, rights));
}

bool isRegularFile(int descriptor)
{
    struct stat status {
    };
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool leadsTo(const std::filesystem::path &path, int descriptor)
{
    struct stat own {
    };
    struct stat named {
    };
    return ::fstat(descriptor, &own) == 0 && ::stat(path.c_str(), &named) == 0 &&
           own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

[[noreturn]] void throwCannotOpen(const std::filesystem::path &path, int number)
{
    if (number == ENOENT || number == ENOTDIR)
        throwFileNotFound(path);
    if (number == EEXIST)
        throwFileExists(path);
    if (number == EACCES || number == EPERM || number == EROFS || number == EISDIR ||
        number == ETXTBSY)
        throw Error(ErrorCode::ReadOnly, "Cannot open file '" + displayName(path) +
                                             "': " + std::system_category().message(number));
    throwSystemError("Opening '" + displayName(path) + "' failed", number);
}

[[noreturn]] void throwNotAFile(const std::filesystem::path &path)
{
    throw Error(ErrorCode::ReadOnly,
                "Cannot open file '" + displayName(path) + "': Not a regular file");
}

std::size_t readAt(int descriptor, std::uint64_t offset, MutableBytes bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::pread(descriptor, bytes.data() + done, bytes.size() - done,
                                      static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throwSystemError("Reading failed", errno);
        if (count == 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

void writeAt(int descriptor, std::uint64_t offset, ByteView bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::pwrite(descriptor, bytes.data() + done, bytes.size() - done,
                                       static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throwSystemError("Writing failed", errno);
        done += static_cast<std::size_t>(count);
    }
}

/// Returns 0 or the system's error number. Locks of the open file description, not of the process:
/// two openers in one process must exclude each other, and closing one must not release the other's
/// locks.
int requestLock(int descriptor, LockRange range, short type)
{
    struct flock lock {
    };
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(range.start);
    lock.l_len = static_cast<off_t>(range.length);
    while (::fcntl(descriptor, F_OFD_SETLK, &lock) != 0) {
        if (errno != EINTR)
            return errno;
    }
    return 0;
}

bool tryLockRange(int descriptor, LockRange range, LockMode mode)
{
    const int failure =
        requestLock(descriptor, range, mode == LockMode::Shared ? F_RDLCK : F_WRLCK);
    if (failure != 0 && failure != EAGAIN && failure != EACCES)
        throwSystemError("Locking failed", failure);
    return failure == 0;
}

class PosixFile final : public File
{
public:
    explicit PosixFile(Descriptor descriptor) : m_descriptor(std::move(descriptor)) {}

    std::size_t read(std::uint64_t offset, MutableBytes bytes) override
    {
        return readAt(m_descriptor.number(), offset, bytes);
    }
    void write(std::uint64_t offset, ByteView bytes) override
    {
        writeAt(m_descriptor.number(), offset, bytes);
    }
    std::uint64_t size() override
    {
        struct stat status {
        };
        if (::fstat(m_descriptor.number(), &status) != 0)
            throwSystemError("Asking for the file size failed", errno);
        return static_cast<std::uint64_t>(status.st_size);
    }
    void resize(std::uint64_t size) override
    {
        if (::ftruncate(m_descriptor.number(), static_cast<off_t>(size)) != 0)
            throwSystemError("Changing the file size failed", errno);
    }
    void sync() override
    {
        if (::fdatasync(m_descriptor.number()) != 0)
            throwSystemError("Writing to the disk failed", errno);
    }

    bool tryLock(LockPart part, LockMode mode) override
    {
        return tryLockRange(m_descriptor.number(), lockRange(part), mode);
    }
    void unlock(LockPart part) override
    {
        requestLock(m_descriptor.number(), lockRange(part), F_UNLCK);
    }

    bool isNamed(const std::filesystem::path &path) override
    {
        return leadsTo(path, m_descriptor.number());
    }

private:
    Descriptor m_descriptor;
};

class PosixLockFile final : public LockFile
{
public:
    enum class Origin { New, Ours, Foreign };

    PosixLockFile(std::filesystem::path path, Descriptor descriptor, Origin origin)
        : m_path(std::move(path)), m_descriptor(std::move(descriptor)), m_origin(origin)
    {
    }

    ~PosixLockFile() override
    {
        if (m_origin != Origin::Foreign &&
            requestLock(m_descriptor.number(), kProgramUsers, F_WRLCK) == 0 && isNamed())
            ::unlink(m_path.c_str());
    }

    bool isNew() const override { return m_origin == Origin::New; }
    bool tryLock(LockMode mode) override
    {
        return tryLockRange(m_descriptor.number(), kProgramUsers, mode);
    }
    bool isNamed() override { return leadsTo(m_path, m_descriptor.number()); }

private:
    std::filesystem::path m_path;
    Descriptor m_descriptor;
    Origin m_origin;
};

class PosixFileSystem final : public FileSystem
{
public:
    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        Descriptor descriptor = openDescriptor(path, access);
        if (!descriptor.isOpen())
            throwCannotOpen(path, errno);
        if (!isRegularFile(descriptor.number()))
            throwNotAFile(path);
        return std::make_unique<PosixFile>(std::move(descriptor));
    }

    bool exists(const std::filesystem::path &path) override
    {
        return ::access(path.c_str(), F_OK) == 0;
    }

    void remove(const std::filesystem::path &path) override
    {
        if (::unlink(path.c_str()) != 0 && errno != ENOENT)
            throwSystemError("Removing '" + displayName(path) + "' failed", errno);
    }

    void replace(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        if (::rename(from.c_str(), to.c_str()) != 0)
            throwSystemError("Replacing '" + displayName(to) + "' failed", errno);
    }

    void place(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        int failure =
            ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0
                ? 0
                : errno;
        if (failure == EINVAL || failure == ENOSYS) { // not on this file system
            failure = ::link(from.c_str(), to.c_str()) == 0 ? 0 : errno;
            if (failure == 0)
                ::unlink(from.c_str());
        }
        if (failure == EEXIST)
            throwFileExists(to);
        if (failure != 0)
            throwSystemError("Naming '" + displayName(to) + "' failed", failure);
    }

    std::filesystem::path resolve(const std::filesystem::path &path) override
    {
        std::error_code failure;
        const bool isLink = std::filesystem::is_symlink(path, failure);
        const std::filesystem::path target =
            isLink ? std::filesystem::canonical(path, failure) : path;
        return failure ? path : target; // opening a dangling link fails
    }

    void matchAccess(const std::filesystem::path &file, const std::filesystem::path &model) override
    {
        struct stat wanted {
        };
        struct stat found {
        };
        if (::stat(model.c_str(), &wanted) != 0 || ::stat(file.c_str(), &found) != 0)
            return;
        // Only root may change the owner; others may set a group of their own.
        const auto give = [&](uid_t owner) {
            return ::chown(file.c_str(), owner, wanted.st_gid) == 0;
        };
        if ((found.st_uid != wanted.st_uid || found.st_gid != wanted.st_gid) &&
            !give(wanted.st_uid))
            give(static_cast<uid_t>(-1));
        if (((found.st_mode ^ wanted.st_mode) & 07777) != 0)
            ::chmod(file.c_str(), wanted.st_mode & 07777);
    }

    void syncFolder(const std::filesystem::path &folder) override
    {
        const std::filesystem::path name = folder.empty() ? "." : folder;
        const Descriptor descriptor(::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (descriptor.isOpen() && ::fsync(descriptor.number()) == 0)
            return;
        // A folder that may not be read, or a file system without the call: nothing more can be
        // asked for.
        if (errno == EACCES || errno == EINVAL || errno == ENOTSUP)
            return;
        throwSystemError("Writing the folder '" + displayName(name) + "' to the disk failed",
                         errno);
    }

    std::unique_ptr<LockFile> openLock(const std::filesystem::path &path, Access access) override
    {
        Descriptor descriptor = openDescriptor(path, Access::CreateNew);
        if (descriptor.isOpen()) {
            // On a full disk it stays empty, and is known by that.
            [[maybe_unused]] const ssize_t marked =
                ::pwrite(descriptor.number(), kLockMark.data(), kLockMark.size(), kLockMarkOffset);
            return std::make_unique<PosixLockFile>(path, std::move(descriptor),
                                                   PosixLockFile::Origin::New);
        }
        descriptor = openDescriptor(path, Access::Create); // the last user may remove it just now
        if (!descriptor.isOpen() && access == Access::Read)
            descriptor = openDescriptor(path, Access::Read);
        if (!descriptor.isOpen()) {
            if (access != Access::Read)
                throwCannotOpen(path, errno);
            return nullptr;
        }
        if (!isRegularFile(descriptor.number()))
            throwNotAFile(path);
        Bytes content(kLockFileSize + 1);
        content.resize(readAt(descriptor.number(), 0, content));
        return std::make_unique<PosixLockFile>(
            path, std::move(descriptor),
            isOurLockFile(content) ? PosixLockFile::Origin::Ours : PosixLockFile::Origin::Foreign);
    }
};

} // namespace

std::unique_ptr<FileSystem> makeSystemFiles()
{
    return std::make_unique<PosixFileSystem>();
}

} // namespace jet
