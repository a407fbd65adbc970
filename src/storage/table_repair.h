#pragma once

#include "jet/database.h"

/// The repair of table Tabel. All throw jet::Error; the file is then as it was.

/// Rebuilds Tabel in one transaction: its columns (name, type, size) and records copied as they are
/// into a new table with the primary index, which then takes its place. Error 3021 when there is
/// no record, 3262 when another program has the file open.
void rebuildTabel(jet::Database &database, jet::DateTime now);

/// Drops table Tabel2, which an unfinished repair of another program may have left behind.
void dropScratchTable(jet::Database &database);
