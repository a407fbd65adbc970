#include "jet/file/windows_handle.h"
#include "jet/file/windows_range_locks.h"

#include <utility>

namespace jet
{
namespace
{

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
        const DWORD number = retryRefused([&] { return DeleteFileW(path.c_str()) != FALSE; });
        if (number != ERROR_SUCCESS && number != ERROR_FILE_NOT_FOUND &&
            number != ERROR_PATH_NOT_FOUND)
            throwSystemError("Removing '" + displayName(path) + "' failed", number);
    }

    void replace(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        const DWORD number = retryRefused([&] {
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
        const DWORD number = retryRefused(
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
