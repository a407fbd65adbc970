#pragma once

#include <QString>
#include <array>

/// Storage file names: bare names of files in the folder mdb/, never paths.

/// True when the name has none of the nine characters that are invalid in a file name or could form
/// a path: " * / ? \ | : < >
bool nume_fisier_valid(const QString &name);

/// The archive of a storage file. `date` is the day's, as data_pentru_fisier() and fileDate() write
/// it.
QString archiveName(const QString &date, const QString &storageName);

/// Makes every name end in ".mdb": removes each ".mdb" in it (case-sensitive), then appends one. So
/// every valid name is that of a file: "." and ".." no longer name folders, an empty name becomes
/// ".mdb".
void adauga_extensie_mdb(std::array<QString, 4> &names);
