#include "platform/durable_file.h"
#include "platform/replacement.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{

constexpr qint64 kCopyBlock = 1 << 20; // bytes

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
    Replacement file(path);
    file.write(content);
    file.commit();
}

void copyFile(const QString &source, const QString &target)
{
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly))
        throw fileError(in);
    Replacement out(target);
    while (!in.atEnd()) {
        const QByteArray block = in.read(kCopyBlock);
        if (block.isEmpty())
            throw fileError(in);
        out.write(block);
    }
    out.commit();
}
