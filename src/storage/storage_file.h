#pragma once

#include <QDateTime>
#include <QString>
#include <filesystem>

std::filesystem::path nativePath(const QString &path);

/// Creates a storage file with an empty table Tabel: it appears complete or not at all. `now` is
/// the creation date in its system tables. Throws jet::Error, 3204 when the file exists.
void createStorageFile(const QString &path, const QDateTime &now);
