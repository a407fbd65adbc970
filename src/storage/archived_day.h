#pragma once

#include "app/settings/channels.h"

#include <QString>
#include <array>
#include <vector>

/// The samples of one archived day, in the order in which they were stored.
struct ArchivedDay {
    /// Senzor1 to Senzor6; NaN where nothing is stored.
    std::array<std::vector<double>, channels::kCount> sensors;
    std::vector<double> moments; ///< days since 1899-12-30, as the database counts; 0 for unknown

    std::size_t size() const { return moments.size(); }
};

/// Reads table Tabel of an archive. Columns are found by their names; values of other types are
/// converted as the database program does. Throws jet::Error: what opening and reading throw, for
/// a column that is not there, for a value that is no number or no date.
ArchivedDay readArchive(const QString &path);
