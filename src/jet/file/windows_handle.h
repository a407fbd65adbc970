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

/// What Windows refuses while another program looks into a file.
bool isRefusal(DWORD number);

/// A file that was just removed keeps its name while a virus scanner or a backup still looks into
/// it, and until then the system neither opens nor makes one of that name. Nor does it remove or
/// replace a file they look into. They are done in moments: what is refused is tried again, for
/// about 150 ms in all. Gives the last attempt's error number, ERROR_SUCCESS when it was done.
template <typename Attempt>
DWORD untilGranted(Attempt attempt)
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
