#pragma once

#include <QString>
#include <array>

/// Storage file names: bare names of files in the folder mdb/, never paths.

/// True when the name holds none of the nine characters that a file name cannot hold and a path
/// could be made of: " * / ? \ | : < >
bool nume_fisier_valid(const QString &name);

/// The archive of a storage file. `date` is the day's, as data_pentru_fisier() and fileDate() write
/// it.
QString archiveName(const QString &date, const QString &storageName);

/// Makes every name end in ".mdb": each ".mdb" in it is removed (case-sensitive), then one is put
/// at the end. A valid name is then a file of its folder, whatever was typed: "." and ".." are no
/// longer folders, and nothing becomes ".mdb".
void adauga_extensie_mdb(std::array<QString, 4> &names);
