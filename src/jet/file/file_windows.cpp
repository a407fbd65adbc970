#include "jet/file/lock_ranges.h"
#include "jet/file/until_granted_windows.h"

#include <map>
#include <string>
#include <utility>

namespace jet
{
namespace
{

/// The system's own text, UTF-8. The C library would give it in the code page of the country.
std::string messageOf(DWORD number)
{
    std::array<wchar_t, 512> text{};
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
        nullptr, number, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::array<char, 3 * text.size()> message{};
    const int bytes =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(length), message.data(),
                            static_cast<int>(message.size()), nullptr, nullptr);
    const std::string_view found(message.data(), static_cast<std::size_t>(bytes));
    if (const std::size_t end = found.find_last_not_of(' '); end != std::string_view::npos)
        return std::string(found.substr(0, end + 1));
    return "error " + std::to_string(number);
}

[[noreturn]] void throwSystemError(const std::string &what, DWORD number)
{
    const bool full = number == ERROR_DISK_FULL || number == ERROR_HANDLE_DISK_FULL;
    throw Error(full ? ErrorCode::DiskFull : ErrorCode::DiskError, what + ": " + messageOf(number));
}

[[noreturn]] void throwInUse(const std::filesystem::path &path)
{
    throw Error(ErrorCode::InUse, "Could not use '" + displayName(path) +
                                      "': another program has it open exclusively.");
}

[[noreturn]] void throwCannotOpen(const std::filesystem::path &path, DWORD number)
{
    const std::string name = "'" + displayName(path) + "'";
    switch (number) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        throwFileNotFound(path);
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        throwInUse(path);
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        throwFileExists(path);
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        throw Error(ErrorCode::ReadOnly, "Cannot open file " + name + ": " + messageOf(number));
    default:
        throwSystemError("Opening " + name + " failed", number);
    }
}

/// Owns a file handle.
class Handle
{
public:
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    Handle(Handle &&other) noexcept : m_handle(std::exchange(other.m_handle, INVALID_HANDLE_VALUE))
    {
    }
    Handle &operator=(Handle &&other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~Handle() { close(); }

    void close()
    {
        if (isOpen())
            CloseHandle(std::exchange(m_handle, INVALID_HANDLE_VALUE));
    }
    HANDLE get() const { return m_handle; }
    bool isOpen() const { return m_handle != INVALID_HANDLE_VALUE; }

private:
    HANDLE m_handle;
};

DWORD creationFor(FileSystem::Access access)
{
    switch (access) {
    case FileSystem::Access::Create:
        return OPEN_ALWAYS;
    case FileSystem::Access::CreateNew:
    case FileSystem::Access::CreatePrivate: // the folder's rights hold for everything in it
        return CREATE_NEW;
    default:
        return OPEN_EXISTING;
    }
}

/// On failure GetLastError() says why.
Handle openHandle(const std::filesystem::path &path, FileSystem::Access access)
{
    const DWORD rights =
        access == FileSystem::Access::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    Handle handle(INVALID_HANDLE_VALUE);
    const DWORD number = untilGranted([&] {
        handle = Handle(CreateFileW(path.c_str(), rights, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, creationFor(access), FILE_ATTRIBUTE_NORMAL, nullptr));
        return handle.isOpen();
    });
    SetLastError(number);
    return handle;
}

bool leadsTo(const std::filesystem::path &path, HANDLE handle)
{
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const Handle other(CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    BY_HANDLE_FILE_INFORMATION own{};
    BY_HANDLE_FILE_INFORMATION named{};
    return other.isOpen() && GetFileInformationByHandle(handle, &own) &&
           GetFileInformationByHandle(other.get(), &named) &&
           own.dwVolumeSerialNumber == named.dwVolumeSerialNumber &&
           own.nFileIndexHigh == named.nFileIndexHigh && own.nFileIndexLow == named.nFileIndexLow;
}

OVERLAPPED at(std::uint64_t offset)
{
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

std::size_t readAt(HANDLE handle, std::uint64_t offset, MutableBytes bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        OVERLAPPED place = at(offset + done);
        DWORD count = 0;
        if (!ReadFile(handle, bytes.data() + done, static_cast<DWORD>(bytes.size() - done), &count,
                      &place)) {
            if (GetLastError() == ERROR_HANDLE_EOF)
                break;
            throwSystemError("Reading failed", GetLastError());
        }
        if (count == 0)
            break;
        done += count;
    }
    return done;
}

void writeAt(HANDLE handle, std::uint64_t offset, ByteView bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        OVERLAPPED place = at(offset + done);
        DWORD count = 0;
        if (!WriteFile(handle, bytes.data() + done, static_cast<DWORD>(bytes.size() - done), &count,
                       &place))
            throwSystemError("Writing failed", GetLastError());
        done += count;
    }
}

/// Shared and exclusive locks on ranges of an open file.
class RangeLocks
{
public:
    explicit RangeLocks(const Handle &handle) : m_handle(handle) {}

    bool tryLock(LockRange range, LockMode mode)
    {
        const auto held = m_held.find(range.start);
        if (held != m_held.end() && held->second.mode == mode)
            return true;
        const bool done = mode == LockMode::Shared ? takeShared(range)
                                                   : takeExclusive(range, held != m_held.end());
        if (done)
            m_held[range.start] = {range, mode};
        return done;
    }
    void unlock(LockRange range)
    {
        if (m_held.erase(range.start) != 0)
            release(range);
    }
    /// CloseHandle() releases locks lazily.
    void unlockAll()
    {
        for (const auto &[start, held] : m_held)
            release(held.range);
        m_held.clear();
    }

private:
    struct Held {
        LockRange range;
        LockMode mode;
    };

    /// Held while an exclusive lock is taken; behind all other ranges.
    static constexpr LockRange kGate{0x1'0000'0100, 1};

    /// Opens the taken gate again, whatever happens to the lock.
    class GateKeeper
    {
    public:
        explicit GateKeeper(RangeLocks &locks) : m_locks(locks) {}
        ~GateKeeper() { m_locks.release(kGate); }
        GateKeeper(const GateKeeper &) = delete;
        GateKeeper &operator=(const GateKeeper &) = delete;

    private:
        RangeLocks &m_locks;
    };

    bool takeShared(LockRange range)
    {
        // A handle may lay a shared lock over its exclusive one; releasing takes that one first.
        const bool wasExclusive = m_held.contains(range.start);
        if (!request(range, LockMode::Shared))
            return false;
        if (wasExclusive)
            release(range);
        return true;
    }

    /// A shared lock does not become an exclusive one, it has to be given up first. Nobody takes an
    /// exclusive lock without the gate, so the shared one can always be had back, unless another
    /// program, which knows no gate, has come between.
    bool takeExclusive(LockRange range, bool isShared)
    {
        if (!request(kGate, LockMode::Exclusive))
            return false;
        const GateKeeper keeper(*this);
        if (isShared)
            unlock(range);
        if (request(range, LockMode::Exclusive))
            return true;
        if (isShared && request(range, LockMode::Shared))
            m_held[range.start] = {range, LockMode::Shared};
        return false;
    }

    bool request(LockRange range, LockMode mode)
    {
        OVERLAPPED place = at(range.start);
        const DWORD flags =
            LOCKFILE_FAIL_IMMEDIATELY | (mode == LockMode::Exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
        if (LockFileEx(m_handle.get(), flags, 0, range.length, 0, &place))
            return true;
        if (GetLastError() != ERROR_LOCK_VIOLATION && GetLastError() != ERROR_IO_PENDING)
            throwSystemError("Locking failed", GetLastError());
        return false;
    }
    void release(LockRange range)
    {
        OVERLAPPED place = at(range.start);
        UnlockFileEx(m_handle.get(), 0, range.length, 0, &place);
    }

    const Handle &m_handle;
    std::map<std::uint64_t, Held> m_held;
};

class WindowsFile final : public File
{
public:
    explicit WindowsFile(Handle handle) : m_handle(std::move(handle)) {}
    ~WindowsFile() override { releaseName(); }

    std::size_t read(std::uint64_t offset, MutableBytes bytes) override
    {
        return readAt(m_handle.get(), offset, bytes);
    }
    void write(std::uint64_t offset, ByteView bytes) override
    {
        writeAt(m_handle.get(), offset, bytes);
    }
    std::uint64_t size() override
    {
        LARGE_INTEGER size{};
        if (!GetFileSizeEx(m_handle.get(), &size))
            throwSystemError("Asking for the file size failed", GetLastError());
        return static_cast<std::uint64_t>(size.QuadPart);
    }
    void resize(std::uint64_t size) override
    {
        LARGE_INTEGER end{};
        end.QuadPart = static_cast<LONGLONG>(size);
        if (!SetFilePointerEx(m_handle.get(), end, nullptr, FILE_BEGIN) ||
            !SetEndOfFile(m_handle.get()))
            throwSystemError("Changing the file size failed", GetLastError());
    }
    void sync() override
    {
        if (!FlushFileBuffers(m_handle.get()))
            throwSystemError("Writing to the disk failed", GetLastError());
    }

    bool tryLock(LockPart part, LockMode mode) override
    {
        return m_locks.tryLock(lockRange(part), mode);
    }
    void unlock(LockPart part) override { m_locks.unlock(lockRange(part)); }

    bool isNamed(const std::filesystem::path &path) override
    {
        return leadsTo(path, m_handle.get());
    }
    /// An open file can neither be removed nor replaced.
    void releaseName() override
    {
        m_locks.unlockAll();
        m_handle.close();
    }

private:
    Handle m_handle;
    RangeLocks m_locks{m_handle};
};

class WindowsLockFile final : public LockFile
{
public:
    enum class Origin { New, Ours, Foreign };

    WindowsLockFile(std::filesystem::path path, Handle handle, Origin origin)
        : m_path(std::move(path)), m_handle(std::move(handle)), m_origin(origin)
    {
    }

    ~WindowsLockFile() override
    {
        m_locks.unlockAll();
        m_handle.close();
        if (m_origin != Origin::Foreign)
            DeleteFileW(m_path.c_str()); // fails, as it should, while anybody else has it open
    }

    bool isNew() const override { return m_origin == Origin::New; }
    bool tryLock(LockMode mode) override { return m_locks.tryLock(kProgramUsers, mode); }
    bool isNamed() override { return leadsTo(m_path, m_handle.get()); }

private:
    std::filesystem::path m_path;
    Handle m_handle;
    Origin m_origin;
    RangeLocks m_locks{m_handle};
};

class WindowsFileSystem final : public FileSystem
{
public:
    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        Handle handle = openHandle(path, access);
        if (!handle.isOpen())
            throwCannotOpen(path, GetLastError());
        if (GetFileType(handle.get()) != FILE_TYPE_DISK) // COM1.mdb is the port
            throwCannotOpen(path, ERROR_ACCESS_DENIED);
        return std::make_unique<WindowsFile>(std::move(handle));
    }

    bool exists(const std::filesystem::path &path) override
    {
        return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    void remove(const std::filesystem::path &path) override
    {
        const DWORD number = untilGranted([&] { return DeleteFileW(path.c_str()) != FALSE; });
        if (number != ERROR_SUCCESS && number != ERROR_FILE_NOT_FOUND &&
            number != ERROR_PATH_NOT_FOUND)
            throwSystemError("Removing '" + displayName(path) + "' failed", number);
    }

    void replace(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        const DWORD number = untilGranted([&] {
            return MoveFileExW(from.c_str(), to.c_str(),
                               MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
        });
        // The system names a target that is open as one that may not be written.
        if (isRefusal(number))
            throwInUse(to);
        if (number != ERROR_SUCCESS)
            throwSystemError("Replacing '" + displayName(to) + "' failed", number);
    }

    void place(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        const DWORD number = untilGranted(
            [&] { return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != FALSE; });
        if (number == ERROR_ALREADY_EXISTS || number == ERROR_FILE_EXISTS)
            throwFileExists(to);
        if (number != ERROR_SUCCESS)
            throwSystemError("Naming '" + displayName(to) + "' failed", number);
    }

    void syncFolder(const std::filesystem::path &) override
    {
        // There is no such call. A new file's name reaches the disk with its first sync, a replaced
        // one with replace(); the removal of a file may come undone.
    }

    std::unique_ptr<LockFile> openLock(const std::filesystem::path &path, Access access) override
    {
        Handle handle = openHandle(path, Access::CreateNew);
        if (handle.isOpen()) {
            markLock(handle.get());
            return std::make_unique<WindowsLockFile>(path, std::move(handle),
                                                     WindowsLockFile::Origin::New);
        }
        handle = openHandle(path, Access::Create); // the last user may remove it just now
        if (!handle.isOpen() && access == Access::Read && GetLastError() == ERROR_ACCESS_DENIED)
            handle = openHandle(path, Access::Read);
        // A file still refused to a reader is there: others may hold locks in it.
        if (!handle.isOpen() && (access != Access::Read || isRefusal(GetLastError())))
            throwCannotOpen(path, GetLastError());
        if (!handle.isOpen())
            return nullptr;
        Bytes content(kLockFileSize + 1);
        content.resize(readAt(handle.get(), 0, content));
        return std::make_unique<WindowsLockFile>(path, std::move(handle),
                                                 isOurLockFile(content)
                                                     ? WindowsLockFile::Origin::Ours
                                                     : WindowsLockFile::Origin::Foreign);
    }

private:
    /// On a full disk it stays empty, and is known by that.
    static void markLock(HANDLE handle)
    {
        OVERLAPPED place = at(kLockMarkOffset);
        DWORD count = 0;
        WriteFile(handle, kLockMark.data(), static_cast<DWORD>(kLockMark.size()), &count, &place);
    }
};

} // namespace

std::unique_ptr<FileSystem> makeSystemFiles()
{
    return std::make_unique<WindowsFileSystem>();
}

} // namespace jet
