#include "jet/lock_ranges.h"
#include "jet/until_granted_windows.h"

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

/// On failure GetLastError() says why.
Handle openHandle(const std::filesystem::path &path, FileSystem::Access access)
{
    const DWORD rights =
        access == FileSystem::Access::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    const DWORD creation = access == FileSystem::Access::Create ? OPEN_ALWAYS : OPEN_EXISTING;
    Handle handle(INVALID_HANDLE_VALUE);
    const DWORD number = untilGranted([&] {
        handle = Handle(CreateFileW(path.c_str(), rights, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr));
        return handle.isOpen();
    });
    SetLastError(number);
    return handle;
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

class WindowsFile final : public File
{
public:
    explicit WindowsFile(Handle handle) : m_handle(std::move(handle)) {}

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

private:
    Handle m_handle;
};

/// Held while an exclusive lock is taken; behind the ranges that all systems have.
constexpr LockRange kGate{0x7FF00002, 1};

class WindowsLockFile final : public LockFile
{
public:
    WindowsLockFile(std::filesystem::path path, Handle handle)
        : m_path(std::move(path)), m_handle(std::move(handle))
    {
    }

    ~WindowsLockFile() override
    {
        // Left to the closing, locks go when the system finds the time.
        for (const auto &[part, mode] : m_held)
            release(lockRange(part));
        m_handle.close();
        DeleteFileW(m_path.c_str()); // fails, as it should, while anybody else has the file open
    }

    bool tryLock(Part part, Mode mode) override
    {
        const auto held = m_held.find(part);
        if (held != m_held.end() && held->second == mode)
            return true;
        const bool done =
            mode == Mode::Shared ? takeShared(part) : takeExclusive(part, held != m_held.end());
        if (done)
            m_held[part] = mode;
        return done;
    }
    void unlock(Part part) override
    {
        if (m_held.erase(part) != 0)
            release(lockRange(part));
    }

    std::uint64_t stamp() override
    {
        std::array<std::uint8_t, 8> bytes{};
        readAt(m_handle.get(), kStampOffset, bytes);
        return readLittleEndian<std::uint64_t>(bytes, 0);
    }
    void setStamp(std::uint64_t stamp) override
    {
        std::array<std::uint8_t, 8> bytes{};
        writeLittleEndian<8>(bytes, 0, stamp);
        writeAt(m_handle.get(), kStampOffset, bytes);
    }

private:
    /// Opens the taken gate again, whatever happens to the lock.
    class GateKeeper
    {
    public:
        explicit GateKeeper(WindowsLockFile &file) : m_file(file) {}
        ~GateKeeper() { m_file.release(kGate); }
        GateKeeper(const GateKeeper &) = delete;
        GateKeeper &operator=(const GateKeeper &) = delete;

    private:
        WindowsLockFile &m_file;
    };

    bool takeShared(Part part)
    {
        // A handle may lay a shared lock over its exclusive one; releasing takes that one first.
        const bool wasExclusive = m_held.contains(part);
        if (!request(lockRange(part), Mode::Shared))
            return false;
        if (wasExclusive)
            release(lockRange(part));
        return true;
    }

    /// A shared lock does not become an exclusive one, it has to be given up first. Nobody takes an
    /// exclusive lock without the gate, so the shared one can always be had back, unless another
    /// program, which knows no gate, has come between.
    bool takeExclusive(Part part, bool isShared)
    {
        if (!request(kGate, Mode::Exclusive))
            return false;
        const GateKeeper keeper(*this);
        if (isShared)
            unlock(part);
        if (request(lockRange(part), Mode::Exclusive))
            return true;
        if (isShared && request(lockRange(part), Mode::Shared))
            m_held[part] = Mode::Shared;
        return false;
    }

    bool request(LockRange range, Mode mode)
    {
        OVERLAPPED place = at(range.start);
        const DWORD flags =
            LOCKFILE_FAIL_IMMEDIATELY | (mode == Mode::Exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
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

    std::filesystem::path m_path;
    Handle m_handle;
    std::map<Part, Mode> m_held;
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

    void syncFolder(const std::filesystem::path &) override
    {
        // There is no such call. A new file's name reaches the disk with its first sync, a replaced
        // one with replace(); the removal of a file may come undone.
    }

    std::unique_ptr<LockFile> openLock(const std::filesystem::path &path, Access access) override
    {
        Handle handle = openHandle(path, Access::Create);
        if (!handle.isOpen() && access == Access::Read && GetLastError() == ERROR_ACCESS_DENIED)
            handle = openHandle(path, Access::Read);
        if (handle.isOpen())
            return std::make_unique<WindowsLockFile>(path, std::move(handle));
        // A file still refused to a reader is there: others may hold locks in it.
        if (access != Access::Read || isRefusal(GetLastError()))
            throwCannotOpen(path, GetLastError());
        return std::make_unique<NoLockFile>();
    }
};

} // namespace

std::unique_ptr<FileSystem> makeSystemFiles()
{
    return std::make_unique<WindowsFileSystem>();
}

} // namespace jet
