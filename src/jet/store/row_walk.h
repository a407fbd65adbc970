#pragma once

#include "jet/store/index_cursor.h"
#include "jet/store/table_store.h"

#include <memory>
#include <span>

namespace jet
{

/// One order in which the rows of a table are gone through. The place stays where it is when its
/// row is deleted; the next step then leads to a neighbour of what was there.
class RowWalk
{
public:
    virtual ~RowWalk() = default;

    virtual bool first(const TableStore &table) = 0;
    virtual bool last(const TableStore &table) = 0;
    virtual bool next(const TableStore &table) = 0;
    /// The same where it needs no look into the file; false, and nothing moved, where it does.
    virtual bool nextWithinPage(const TableStore &) { return false; }
    virtual bool previous(const TableStore &table) = 0;
    virtual RowPointer row() const = 0;
    /// The bytes of the current row. Throws Error(RecordDeleted).
    virtual StoredRow stored(const TableStore &table) const;
    /// The current row was given another place. The walk goes on from where it met the row.
    virtual void moved(RowPointer) {}
    /// True when changing these columns can give a row another place in the order.
    virtual bool isOrderedBy(const TableStore &table, const std::vector<bool> &changed) const;
    /// To the first row not before a key. Throws Error(InvalidArgument) where rows have none.
    virtual bool seek(const TableStore &table, std::span<const Value> key);
};

/// Pages ascending, rows in the order in which they were added to a page.
std::unique_ptr<RowWalk> makeTableWalk();

/// `realIndex` as in the definition.
std::unique_ptr<RowWalk> makeIndexWalk(const TableStore &table, std::size_t realIndex,
                                       bool backward);

/// By the values of one column, equal ones in table order. The order is worked out once, here;
/// rows added later are not met.
std::unique_ptr<RowWalk> makeSortedWalk(const TableStore &table, std::size_t column,
                                        bool descending);

} // namespace jet
