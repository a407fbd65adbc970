#include "jet/store/assignment.h"

#include "jet/format/column_value.h"
#include "jet/utf8.h"

namespace jet
{

std::size_t columnPlace(const TableStore &table, std::u16string_view column)
{
    const auto place = table.columnNamed(column);
    if (!place)
        throw Error(ErrorCode::NoSuchItem,
                    "Item not found in this collection: column '" + toUtf8(column) + "'.");
    return *place;
}

void requireUserTable(const TableStore &table)
{
    if (table.definition().kind == TableKind::System)
        throw Error(ErrorCode::ReadOnly, "The system tables of a database cannot be changed.");
}

void assign(const TableStore &table, const Assignments &assignments, Row &row,
            std::vector<bool> *changed)
{
    for (const auto &[name, value] : assignments) {
        const std::size_t place = columnPlace(table, name);
        row[place] = columnValue(value, table.definition().columns[place]);
        if (changed != nullptr)
            (*changed)[place] = true;
    }
}

} // namespace jet
