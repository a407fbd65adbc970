#pragma once

#include "jet/store/index_cursor.h"
#include "jet/store/table_store.h"

#include <memory>
#include <span>

namespace jet
{

/// Iterates over the rows of a table in one order. The position stays when its row is deleted; the
/// next step then leads to a neighbour of the deleted row.
class RowWalk
{
public:
    virtual ~RowWalk() = default;

    virtual bool first(const TableStore &table) = 0;
    virtual bool last(const TableStore &table) = 0;
    virtual bool next(const TableStore &table) = 0;
    /// The same for a walk that does not move when this throws or finds no row; false for the
    /// others.
    virtual bool tryNext(const TableStore &) { return false; }
    virtual bool previous(const TableStore &table) = 0;
    virtual RowPointer row() const = 0;
    /// The bytes of the current row. Throws Error(RecordDeleted).
    virtual StoredRow stored(const TableStore &table) const;
    /// The current row has moved. The walk continues from where it found the row.
    virtual void moved(RowPointer) {}
    /// True when changing these columns can move a row in the order.
    virtual bool isOrderedBy(const TableStore &table, const std::vector<bool> &changed) const;
    /// Moves to the first row not before a key. Throws Error(InvalidArgument) in orders without
    /// keys.
    virtual bool seek(const TableStore &table, std::span<const Value> key);
};

/// Pages ascending, rows in the order in which they were added to a page.
std::unique_ptr<RowWalk> makeTableWalk();

/// `realIndex` as in the definition.
std::unique_ptr<RowWalk> makeIndexWalk(const TableStore &table, std::size_t realIndex,
                                       bool backward);

/// By the values of one column, equal ones in table order. The order is computed once, here; rows
/// added later are not visited.
std::unique_ptr<RowWalk> makeSortedWalk(const TableStore &table, std::size_t column,
                                        bool descending);

} // namespace jet
