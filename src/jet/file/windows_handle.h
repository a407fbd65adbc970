#pragma once

#include "jet/file/file.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string>

namespace jet
{

/// Throws Error(DiskFull) or Error(DiskError) with the system's own words.
[[noreturn]] void throwSystemError(const std::string &what, DWORD number);
[[noreturn]] void throwInUse(const std::filesystem::path &path);
/// Throws what FileSystem::open() says for the system's error number.
[[noreturn]] void throwCannotOpen(const std::filesystem::path &path, DWORD number);

/// Owns a file handle.
class Handle
{
public:
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    Handle(Handle &&other) noexcept;
    Handle &operator=(Handle &&other) noexcept;
    ~Handle() { close(); }

    void close();
    HANDLE get() const { return m_handle; }
    bool isOpen() const { return m_handle != INVALID_HANDLE_VALUE; }

private:
    HANDLE m_handle;
};

/// True for the errors that Windows returns while another program reads a file.
bool isRefusal(DWORD number);

/// Retries for about 150 ms while isRefusal() is true: while a virus scanner or a backup reads a
/// file, Windows refuses to remove or replace it, and to open or create one of the name of a
/// removed one. Returns the last attempt's error number, ERROR_SUCCESS when it succeeded.
template <typename Attempt>
DWORD retryRefused(Attempt attempt)
{
    constexpr DWORD kLongestPause = 80; // ms
    for (DWORD pause = 5;; pause *= 2) {
        const DWORD number = attempt() ? ERROR_SUCCESS : GetLastError();
        if (!isRefusal(number) || pause > kLongestPause)
            return number;
        Sleep(pause);
    }
}

/// On failure GetLastError() says why.
Handle openHandle(const std::filesystem::path &path, FileSystem::Access access);

/// An offset as the calls of the system take it.
OVERLAPPED at(std::uint64_t offset);

} // namespace jet
