#include "jet/lock_ranges.h"

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

Descriptor openDescriptor(const std::filesystem::path &path, FileSystem::Access access)
{
    int flags = O_CLOEXEC;
    if (access == FileSystem::Access::Read)
        flags |= O_RDONLY;
    else
        flags |= O_RDWR | (access == FileSystem::Access::Create ? O_CREAT : 0);
    return Descriptor(::open(path.c_str(), flags, 0666));
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

private:
    Descriptor m_descriptor;
};

class PosixLockFile final : public LockFile
{
public:
    PosixLockFile(std::filesystem::path path, FileSystem::Access access, Descriptor descriptor)
        : m_path(std::move(path)), m_access(access), m_descriptor(std::move(descriptor))
    {
    }

    ~PosixLockFile() override
    {
        if (request(Part::Opener, F_WRLCK) == 0 && stillNamed())
            ::unlink(m_path.c_str());
    }

    bool tryLock(Part part, Mode mode) override
    {
        while (lockOnce(part, mode)) {
            if (part != Part::Opener || stillNamed())
                return true;
            // The last opener removed the file after this one had opened it.
            Descriptor fresh = openDescriptor(m_path, m_access);
            if (!fresh.isOpen())
                throwSystemError("Opening '" + displayName(m_path) + "' failed", errno);
            m_descriptor = std::move(fresh);
        }
        return false;
    }
    void unlock(Part part) override { request(part, F_UNLCK); }

    std::uint64_t stamp() override
    {
        std::array<std::uint8_t, 8> bytes{};
        readAt(m_descriptor.number(), kStampOffset, bytes);
        return readLittleEndian<std::uint64_t>(bytes, 0);
    }
    void setStamp(std::uint64_t stamp) override
    {
        std::array<std::uint8_t, 8> bytes{};
        writeLittleEndian<8>(bytes, 0, stamp);
        writeAt(m_descriptor.number(), kStampOffset, bytes);
    }

private:
    bool lockOnce(Part part, Mode mode)
    {
        const int failure = request(part, mode == Mode::Shared ? F_RDLCK : F_WRLCK);
        if (failure != 0 && failure != EAGAIN && failure != EACCES)
            throwSystemError("Locking failed", failure);
        return failure == 0;
    }

    /// 0 or the system's error number. Locks of the open file, not of the process: two openers in
    /// one process must see each other, and closing one must not take away the other's.
    int request(Part part, int type)
    {
        const LockRange range = lockRange(part);
        struct flock lock {
        };
        lock.l_type = static_cast<short>(type);
        lock.l_whence = SEEK_SET;
        lock.l_start = static_cast<off_t>(range.start);
        lock.l_len = static_cast<off_t>(range.length);
        while (::fcntl(m_descriptor.number(), F_OFD_SETLK, &lock) != 0) {
            if (errno != EINTR)
                return errno;
        }
        return 0;
    }

    bool stillNamed() const
    {
        struct stat own {
        };
        struct stat named {
        };
        return ::fstat(m_descriptor.number(), &own) == 0 && ::stat(m_path.c_str(), &named) == 0 &&
               own.st_dev == named.st_dev && own.st_ino == named.st_ino;
    }

    std::filesystem::path m_path;
    FileSystem::Access m_access;
    Descriptor m_descriptor;
};

class PosixFileSystem final : public FileSystem
{
public:
    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        Descriptor descriptor = openDescriptor(path, access);
        if (!descriptor.isOpen())
            throwCannotOpen(path, errno);
        struct stat status {
        };
        if (::fstat(descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode))
            throwCannotOpen(path, EISDIR);
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

    std::filesystem::path resolve(const std::filesystem::path &path) override
    {
        std::error_code failure;
        const bool isLink = std::filesystem::is_symlink(path, failure);
        const std::filesystem::path target =
            isLink ? std::filesystem::canonical(path, failure) : path;
        return failure ? path : target; // a link to nothing fails where it is opened
    }

    void matchAccess(const std::filesystem::path &file, const std::filesystem::path &model) override
    {
        struct stat wanted {
        };
        if (::stat(model.c_str(), &wanted) != 0)
            return;
        // Only root gives files away; for others the folder's group has to do.
        [[maybe_unused]] const int owned = ::chown(file.c_str(), wanted.st_uid, wanted.st_gid);
        ::chmod(file.c_str(), wanted.st_mode & 07777);
    }

    void syncFolder(const std::filesystem::path &folder) override
    {
        const std::filesystem::path name = folder.empty() ? "." : folder;
        const Descriptor descriptor(::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (descriptor.isOpen() && ::fsync(descriptor.number()) == 0)
            return;
        // A folder that may be written but not read, and file systems that do not know the call:
        // there is no way to ask for more than they do by themselves.
        if (errno == EACCES || errno == EINVAL || errno == ENOTSUP)
            return;
        throwSystemError("Writing the folder '" + displayName(name) + "' to the disk failed",
                         errno);
    }

    std::unique_ptr<LockFile> openLock(const std::filesystem::path &path, Access access) override
    {
        Descriptor descriptor = openDescriptor(path, Access::Create);
        if (descriptor.isOpen())
            return std::make_unique<PosixLockFile>(path, Access::Create, std::move(descriptor));
        if (access != Access::Read)
            throwCannotOpen(path, errno);
        descriptor = openDescriptor(path, Access::Read);
        if (descriptor.isOpen())
            return std::make_unique<PosixLockFile>(path, Access::Read, std::move(descriptor));
        return std::make_unique<NoLockFile>();
    }

private:
    [[noreturn]] static void throwCannotOpen(const std::filesystem::path &path, int number)
    {
        if (number == ENOENT || number == ENOTDIR)
            throwFileNotFound(path);
        if (number == EACCES || number == EPERM || number == EROFS || number == EISDIR ||
            number == ETXTBSY)
            throw Error(ErrorCode::ReadOnly, "Cannot open file '" + displayName(path) +
                                                 "': " + std::system_category().message(number));
        throwSystemError("Opening '" + displayName(path) + "' failed", number);
    }
};

} // namespace

std::unique_ptr<FileSystem> makeSystemFiles()
{
    return std::make_unique<PosixFileSystem>();
}

} // namespace jet
