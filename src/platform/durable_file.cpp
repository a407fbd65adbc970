#include "platform/durable_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <array>
#include <cerrno>
#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace
{

#ifdef Q_OS_WIN
constexpr std::array<int, 2> kSystemDiskFull{ERROR_DISK_FULL, ERROR_HANDLE_DISK_FULL};
#else
constexpr std::array<int, 1> kSystemDiskFull{ENOSPC};
#endif

constexpr qint64 kCopyBlock = 1 << 20; // bytes

/// A new name may be lost with the power although what is done after it is not, unless it is
/// brought to the disk: with the file itself here, with its folder there.
void syncNameOf(const QString &path)
{
#ifdef Q_OS_WIN
    const QString name = QDir::toNativeSeparators(path);
    const HANDLE file =
        CreateFileW(reinterpret_cast<const wchar_t *>(name.utf16()), GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return; // already in use by another program: the system writes it in its own time
    FlushFileBuffers(file);
    CloseHandle(file);
#else
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return; // a folder that may be written but not read: its file system decides
    ::fsync(descriptor);
    ::close(descriptor);
#endif
}

bool isDiskFull(const QFileDevice &file)
{
    // The toolkit has no code of its own for a full disk, only the system's text.
    return std::any_of(
        kSystemDiskFull.begin(), kSystemDiskFull.end(),
        [text = file.errorString()](int number) { return text == qt_error_string(number); });
}

void writeAll(QSaveFile &file, QByteArrayView bytes)
{
    // A full disk first takes less than it was given, and only then says why.
    while (!bytes.isEmpty()) {
        const qint64 written = file.write(bytes.data(), bytes.size());
        if (written <= 0)
            throw fileError(file);
        bytes = bytes.sliced(written);
    }
}

void commit(QSaveFile &file)
{
    // The toolkit's commit takes no notice when what it still held back cannot be written: it would
    // put a cut file in the old one's place.
    if (!file.flush() || !file.commit())
        throw fileError(file);
    syncNameOf(file.fileName());
}

} // namespace

RuntimeError fileError(const QFileDevice &file)
{
    if (isDiskFull(file))
        return RuntimeError(RuntimeError::DiskFull);
    const QFileInfo info(file.fileName());
    if (!info.dir().exists())
        return RuntimeError(RuntimeError::PathNotFound);
    switch (file.error()) {
    case QFileDevice::PermissionsError:
        return RuntimeError(RuntimeError::PermissionDenied);
    case QFileDevice::OpenError:
        if (!info.exists())
            return RuntimeError(RuntimeError::FileNotFound);
        break;
    default:
        break;
    }
    return RuntimeError(RuntimeError::PathFileAccess);
}

void replaceFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw fileError(file);
    writeAll(file, content);
    commit(file);
}

void copyFile(const QString &source, const QString &target)
{
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly))
        throw fileError(in);
    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly))
        throw fileError(out);
    while (!in.atEnd()) {
        const QByteArray block = in.read(kCopyBlock);
        if (block.isEmpty())
            throw fileError(in);
        writeAll(out, block);
    }
    commit(out);
}
