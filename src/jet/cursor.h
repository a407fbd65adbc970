#pragma once

#include "jet/row_pointer.h"
#include "jet/value.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace jet
{

class RowWalk;
class Session;
struct StoredRow;
class TableStore;

enum class Order { Ascending, Descending };

/// Iterates over the records of a table, in both directions, while the table may be changed: a
/// record deleted ahead is not visited, one added ahead is, unless the cursor is sorted by a column
/// without index. A record that the cursor itself changes is visited once in a pass, wherever the
/// change moves it; first(), last(), seek() and a change of direction begin a new pass. Functions
/// that need a current record throw Error(NoCurrentRecord), or Error(RecordDeleted) when it was
/// deleted and no new record has taken its place since; a Snapshot rules that out.
class Cursor
{
public:
    Cursor(Cursor &&) noexcept;
    Cursor &operator=(Cursor &&) noexcept;
    ~Cursor();

    /// Each returns false, and leaves no current record, at the end. A new cursor is before the
    /// first record.
    bool first();
    bool last();
    bool next();
    bool previous();
    bool hasCurrent() const { return m_place == Place::On; }

    /// Only on a cursor of an index: to the first record, in the cursor's order, that does not come
    /// before a key. The key may give fewer columns than the index has; its values are converted.
    /// Throws Error(InvalidArgument) on other cursors.
    bool seek(std::span<const Value> key);

    /// Where the current record is stored; valid until it is deleted or changed.
    RowPointer bookmark() const;

    Value value(std::size_t column) const;
    Value value(std::u16string_view column) const;
    Row row() const;
    /// Reads into an existing row, which is faster for many. The first call after a move returns
    /// the record as the move found it; later calls, and the other functions, as it is now.
    void read(Row &row) const;

    /// Changes the assigned columns of the current record; throws as Table::append() does.
    void update(const Assignments &assignments);
    /// Deletes the current record; next() goes to the one after it.
    void erase();

private:
    friend class Table;
    enum class Place { Before, On, After };

    Cursor(std::shared_ptr<Session> session, Text table, std::unique_ptr<RowWalk> walk);

    TableStore &store() const;
    RowPointer current() const;
    StoredRow storedRow(const TableStore &table) const;
    bool step(bool forward);
    bool stepUnchanged();
    void beginPass(bool forward);
    void arrive(bool found, Place otherwise);

    std::shared_ptr<Session> m_session;
    Text m_table;
    std::unique_ptr<RowWalk> m_walk;
    Place m_place = Place::Before;
    bool m_forward = true;
    /// Rows met in this pass that an update gave another place in its order.
    std::set<RowPointer> m_moved;
    /// Where the current record is when it was moved; the walk stays where it met the record.
    std::optional<RowPointer> m_movedTo;
    mutable std::shared_ptr<TableStore> m_store;
    mutable std::uint64_t m_structure = 0;
    /// Version of the pages that the last move found unchanged, until the record was read.
    mutable std::uint64_t m_arrival = 0;
};

} // namespace jet
