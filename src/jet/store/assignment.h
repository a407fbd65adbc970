#pragma once

#include "jet/store/table_store.h"
#include "jet/value.h"

namespace jet
{

/// Place of a column in a row. Throws Error(NoSuchItem).
std::size_t columnPlace(const TableStore &table, std::u16string_view column);

/// Throws Error(ReadOnly) for a table that only the engine itself may write.
void requireUserTable(const TableStore &table);

/// Converts assigned values to their columns' types and puts them into a row; notes their places
/// in `changed` when it is given.
void assign(const TableStore &table, const Assignments &assignments, Row &row,
            std::vector<bool> *changed = nullptr);

} // namespace jet
