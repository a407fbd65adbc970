#pragma once

#include <QDateTime>
#include <QString>
#include <filesystem>

std::filesystem::path nativePath(const QString &path);

/// Makes a storage file with an empty table Tabel, for delivery: it appears complete or not at all
/// when the program is stopped, a loss of power may take it again. `now` is noted in its system
/// tables. Throws jet::Error, 3204 when the file exists, and std::filesystem::filesystem_error.
void createStorageFile(const QString &path, const QDateTime &now);
