#include "storage/storage_file.h"
#include "jet/database.h"
#include "storage/tabel.h"

std::filesystem::path nativePath(const QString &path)
{
    return path.toStdU16String();
}

void createStorageFile(const QString &path, const QDateTime &now)
{
    jet::Database::create(nativePath(path), tabel::momentValue(now), {}, {tabel::design()});
}
