#include "storage/storage_file.h"
#include "jet/database.h"
#include "storage/tabel.h"

std::filesystem::path nativePath(const QString &path)
{
    return path.toStdU16String();
}

void createStorageFile(const QString &path, const QDateTime &now)
{
    const QString unfinished = path + QStringLiteral(".new");
    std::filesystem::remove(nativePath(unfinished));
    if (std::filesystem::exists(nativePath(path)))
        throw jet::Error(jet::ErrorCode::FileExists, "Database already exists.");
    {
        jet::Database database =
            jet::Database::create(nativePath(unfinished), tabel::momentValue(now));
        database.createTable(tabel::design(), tabel::momentValue(now));
    }
    std::filesystem::rename(nativePath(unfinished), nativePath(path));
}
