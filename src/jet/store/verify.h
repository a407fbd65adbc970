#pragma once

#include "jet/file/pager.h"
#include "jet/finding.h"

#include <optional>
#include <vector>

namespace jet
{

class TableStore;

/// Checks every page, map, row and index of a database and reports what does not fit together.
/// Read-only. Damage that makes a table unreadable is reported once, and the next table is checked.
std::vector<Finding> verify(Pager &pager);

/// An entry that an index should hold.
struct ExpectedEntry {
    Bytes bytes;
    bool anyNull = false; ///< its key need not be unique
};

/// Checks one index: order, links, copies in the nodes, and that it holds exactly `expected`, the
/// entries of the table's rows. Adds the pages of the tree to `pages`. `expected` is nullopt when
/// the keys of the index cannot be computed.
void verifyIndex(const TableStore &table, std::size_t realIndex,
                 std::optional<std::vector<ExpectedEntry>> expected, std::vector<PageNo> &pages,
                 std::vector<Finding> &findings);

} // namespace jet
