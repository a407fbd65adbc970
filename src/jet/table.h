#pragma once

#include "jet/cursor.h"
#include "jet/table_design.h"
#include "jet/value.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace jet
{

class Session;
class TableStore;

/// A table of an open database, looked up by its name for every statement. It keeps the database
/// open.
class Table
{
public:
    const Text &name() const { return m_name; }

    /// Columns in the order of their definition, and the indexes.
    TableDesign design() const;
    /// Index of a column in a Row. Throws Error(NoSuchItem).
    std::size_t column(std::u16string_view name) const;

    /// Number of records, without counting them. Throws Error(Damaged) when the file states more
    /// than its pages can hold.
    std::uint32_t recordCount() const;

    /// Adds a record; columns that are not assigned stay null, or false. Each value is converted to
    /// its column's type, see convertValue(). Throws Error(DuplicateKey), Error(NullNotAllowed),
    /// Error(NoSuchItem), Error(TypeConversion), Error(ValueTooLong), Error(RecordTooLarge).
    void append(const Assignments &assignments);
    /// The same with one value for every column, in their order.
    void appendRow(Row values);

    /// The record that Cursor::bookmark() named. Throws Error(RecordDeleted).
    Row record(RowPointer bookmark) const;

    /// Removes all records and frees their pages.
    void deleteAll();

    /// A new cursor is before the first record. In table order:
    Cursor records() const;
    /// In the order of an index, by its name. Throws Error(NoSuchItem).
    Cursor byIndex(std::u16string_view index, Order order = Order::Ascending) const;
    /// Sorted by a column: through an index that begins with it, if any; otherwise the keys of all
    /// records are sorted in memory, without their other values. Characters outside the known part
    /// of the sort order come last. Throws Error(NoSuchItem).
    Cursor sortedBy(std::u16string_view column, Order order = Order::Ascending) const;

private:
    friend class Database;
    Table(std::shared_ptr<Session> session, Text name);

    TableStore &store() const;

    std::shared_ptr<Session> m_session;
    Text m_name;
    mutable std::shared_ptr<TableStore> m_store;
    mutable std::uint64_t m_structure = 0;
};

} // namespace jet
