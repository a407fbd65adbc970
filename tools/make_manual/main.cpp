// make_manual SOURCE PICTURES TARGET: makes the operator's manual from its text and the folder of
// its pictures.

#include "tools/make_manual/rtf_document.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <cstdio>
#include <stdexcept>

namespace
{

[[noreturn]] void fail(const QFileDevice &file)
{
    throw std::runtime_error(
        QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()).toStdString());
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        fail(file);
    return file.readAll();
}

void makeManual(const QString &source, const QDir &pictures, const QString &target)
{
    const QByteArray document =
        rtfDocument(parseManual(QString::fromUtf8(contentOf(source))),
                    [&](const QString &name) { return contentOf(pictures.filePath(name)); });
    QSaveFile file(target);
    if (!file.open(QIODevice::WriteOnly) || file.write(document) != document.size() ||
        !file.commit())
        fail(file);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::fputs("usage: make_manual SOURCE PICTURES TARGET\n", stderr);
        return 2;
    }
    try {
        makeManual(QFile::decodeName(argv[1]), QDir(QFile::decodeName(argv[2])),
                   QFile::decodeName(argv[3]));
    } catch (const std::exception &error) {
        std::fprintf(stderr, "make_manual: %s\n", error.what());
        return 1;
    }
    return 0;
}
