#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

/// What Windows refuses while another program looks into a file.
inline bool isRefusal(DWORD number)
{
    return number == ERROR_ACCESS_DENIED || number == ERROR_SHARING_VIOLATION;
}

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
