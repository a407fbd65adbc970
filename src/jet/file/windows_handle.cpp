#include "jet/file/windows_handle.h"

#include <array>
#include <string_view>
#include <utility>

namespace jet
{
namespace
{

/// The system's own text, UTF-8. The C library returns it in the local code page.
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

} // namespace

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

Handle::Handle(Handle &&other) noexcept
    : m_handle(std::exchange(other.m_handle, INVALID_HANDLE_VALUE))
{
}

Handle &Handle::operator=(Handle &&other) noexcept
{
    std::swap(m_handle, other.m_handle);
    return *this;
}

void Handle::close()
{
    if (isOpen())
        CloseHandle(std::exchange(m_handle, INVALID_HANDLE_VALUE));
}

bool isRefusal(DWORD number)
{
    return number == ERROR_ACCESS_DENIED || number == ERROR_SHARING_VIOLATION;
}

Handle openHandle(const std::filesystem::path &path, FileSystem::Access access)
{
    const DWORD rights =
        access == FileSystem::Access::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    Handle handle(INVALID_HANDLE_VALUE);
    const DWORD number = retryRefused([&] {
        handle = Handle(CreateFileW(path.c_str(), rights, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, creationFor(access), FILE_ATTRIBUTE_NORMAL, nullptr));
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

} // namespace jet
