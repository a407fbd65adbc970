#include "platform/file_sync.h"
#include "platform/runtime_error.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <array>

#ifdef Q_OS_WIN
#include <io.h>
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace
{

#ifdef Q_OS_WIN
constexpr std::array<int, 2> kDiskFull{ERROR_DISK_FULL, ERROR_HANDLE_DISK_FULL};
#else
constexpr std::array<int, 2> kDiskFull{ENOSPC, EDQUOT};
#endif

RuntimeError syncError(int number)
{
    const bool full = std::find(kDiskFull.begin(), kDiskFull.end(), number) != kDiskFull.end();
    return RuntimeError(full ? RuntimeError::DiskFull : RuntimeError::PathFileAccess);
}

} // namespace

bool isDiskFullText(const QString &errorText)
{
    return std::any_of(kDiskFull.begin(), kDiskFull.end(),
                       [&](int number) { return errorText == qt_error_string(number); });
}

#ifdef Q_OS_WIN

void syncContent(const QFileDevice &file)
{
    if (!FlushFileBuffers(reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()))))
        throw syncError(static_cast<int>(GetLastError()));
}

void syncName(const QString &path)
{
    // The system writes a file's name with the file.
    const HANDLE file = CreateFileW(
        QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath()).toStdWString().c_str(),
        GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
        OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return; // best effort: another program may hold the file by now
    FlushFileBuffers(file);
    CloseHandle(file);
}

#else

void syncContent(const QFileDevice &file)
{
    if (::fsync(file.handle()) == 0 || errno == EINVAL || errno == ENOTSUP)
        return; // some file systems cannot sync
    throw syncError(errno);
}

void syncName(const QString &path)
{
    // The name is in the folder, and reaches the disk with it.
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return; // a folder that may be written but not read
    ::fsync(descriptor);
    ::close(descriptor);
}

#endif
