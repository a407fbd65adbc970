// Creates the storage files of an installation.

#include "platform/clock.h"
#include "storage/storage_file.h"

#include <QCoreApplication>
#include <QFile>
#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_storage_file FILE\n");
        return 2;
    }
    try {
        const QString path = QFile::decodeName(argv[1]);
        QFile::remove(path); // left over from an earlier build
        // The date is that of the format's own system tables: the same build gives the same bytes.
        createStorageFile(path, wallTime(QDate(2004, 6, 5), QTime(13, 6, 59)));
    } catch (const std::exception &error) {
        std::fprintf(stderr, "make_storage_file: %s\n", error.what());
        return 1;
    }
    return 0;
}
