#include "platform/durable_file.h"
#include "platform/file_sync.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QThread>
#include <functional>
#include <optional>

namespace
{

constexpr qint64 kCopyBlock = 1 << 20;   // bytes
constexpr unsigned long kFirstPause = 5; // ms
constexpr unsigned long kLastPause = 80; // ms

RuntimeError saveError(const QSaveFile &file)
{
    // The toolkit has no code of its own for a full disk, only the system's text.
    return isDiskFullText(file.errorString()) ? RuntimeError(RuntimeError::DiskFull)
                                              : fileError(file);
}

void write(QSaveFile &file, QByteArrayView bytes)
{
    // A full disk first accepts part of the bytes, and only the next write reports why.
    while (!bytes.isEmpty()) {
        const qint64 written = file.write(bytes.data(), bytes.size());
        if (written <= 0)
            throw saveError(file);
        bytes = bytes.sliced(static_cast<qsizetype>(written));
    }
}

/// nullopt once the new file has replaced the old one; else the error of a refused rename.
std::optional<RuntimeError> tryReplace(const QString &path,
                                       const std::function<void(QSaveFile &)> &fill)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw saveError(file);
    fill(file);
    // commit() ignores a last buffer that cannot be written or synced: it would replace the file by
    // a truncated one.
    if (!file.flush())
        throw saveError(file);
    syncContent(file);
    if (file.commit())
        return std::nullopt;
    if (file.error() != QFileDevice::RenameError)
        throw saveError(file);
    return saveError(file);
}

/// Windows refuses to rename over a file while a virus scanner or a backup reads it. That takes
/// moments: the replacement is retried for about 150 ms in all.
void replace(const QString &path, const std::function<void(QSaveFile &)> &fill)
{
    unsigned long pause = kFirstPause;
    while (const std::optional<RuntimeError> refused = tryReplace(path, fill)) {
        if (pause > kLastPause)
            throw *refused;
        QThread::msleep(pause);
        pause *= 2;
    }
    syncName(path);
}

} // namespace

RuntimeError fileError(const QFileDevice &file)
{
    const QFileInfo info(file.fileName());
    if (!info.dir().exists())
        return RuntimeError(RuntimeError::PathNotFound);
    if (file.error() == QFileDevice::OpenError && !info.exists())
        return RuntimeError(RuntimeError::FileNotFound);
    return RuntimeError(RuntimeError::PathFileAccess);
}

void replaceFile(const QString &path, const QByteArray &content)
{
    replace(path, [&](QSaveFile &file) { write(file, content); });
}

void copyFile(const QString &source, const QString &target)
{
    replace(target, [&](QSaveFile &out) {
        QFile in(source);
        if (!in.open(QIODevice::ReadOnly))
            throw fileError(in);
        while (!in.atEnd()) {
            const QByteArray block = in.read(kCopyBlock);
            if (block.isEmpty())
                throw fileError(in);
            write(out, block);
        }
    });
}
