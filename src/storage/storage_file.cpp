#include "storage/storage_file.h"
#include "jet/store/new_database.h"
#include "storage/tabel.h"

std::filesystem::path nativePath(const QString &path)
{
    return path.toStdU16String();
}

void createStorageFile(const QString &path, const QDateTime &now)
{
    jet::makeNewDatabase(nativePath(path), tabel::momentValue(now), jet::makeSystemFiles(),
                         {tabel::design()});
}
