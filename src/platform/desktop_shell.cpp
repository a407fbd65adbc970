#include "platform/desktop_shell.h"
#include "platform/runtime_error.h"

#include <QDesktopServices>
#include <QDir>
#include <QUrl>

#ifdef Q_OS_WIN
#include <windows.h>

#include <shellapi.h>

void DesktopShell::open(const QString &path, Window window)
{
    const QString target = QLatin1Char('"') + QDir::toNativeSeparators(path) + QLatin1Char('"');
    const int show = window == Window::Minimised ? SW_SHOWMINIMIZED : SW_SHOWNORMAL;
    const HINSTANCE started =
        ShellExecuteW(nullptr, nullptr, L"explorer.exe",
                      reinterpret_cast<const wchar_t *>(target.utf16()), nullptr, show);
    // A value up to 32 is an error code, by the call's own contract.
    if (reinterpret_cast<INT_PTR>(started) <= 32)
        throw RuntimeError(RuntimeError::FileNotFound);
}
#else
void DesktopShell::open(const QString &path, Window)
{
    // The desktop's opener chooses the window; it knows no minimised start.
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        throw RuntimeError(RuntimeError::FileNotFound);
}
#endif
