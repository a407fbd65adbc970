#include "jet/format/table_definition.h"

#include <algorithm>

namespace jet
{

std::size_t TableDefinition::columnAt(std::uint16_t number) const
{
    const auto found = std::ranges::find(columns, number, &ColumnDefinition::number);
    if (found == columns.end())
        throwDamaged("a table definition refers to a column that does not exist");
    return static_cast<std::size_t>(found - columns.begin());
}

std::size_t fixedSize(ColumnType type)
{
    switch (type) {
    case ColumnType::Boolean:
    case ColumnType::Byte:
        return 1;
    case ColumnType::Integer:
        return 2;
    case ColumnType::Long:
    case ColumnType::Single:
        return 4;
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::DateTime:
        return 8;
    case ColumnType::Guid:
        return 16;
    case ColumnType::Numeric:
        return 17;
    case ColumnType::Block:
        return 3992;
    case ColumnType::Binary:
    case ColumnType::Text:
    case ColumnType::Ole:
    case ColumnType::Memo:
        return 0;
    }
    return 0;
}

void layOutColumns(TableDefinition &table)
{
    if (table.columns.size() > kMaxColumns)
        throw Error(ErrorCode::TooManyColumns, "Too many fields defined.");
    std::uint16_t number = 0;
    std::uint16_t variable = 0;
    std::size_t fixedEnd = 0;
    for (ColumnDefinition &column : table.columns) {
        const bool fixed = fixedSize(column.type) != 0;
        column.number = number;
        column.ordinal = number++;
        column.flags =
            static_cast<std::uint8_t>((column.flags & ColumnFlag::Autonumber) |
                                      ColumnFlag::Nullable | (fixed ? ColumnFlag::FixedLength : 0));
        column.variableIndex = variable;
        column.fixedOffset = 0;
        if (fixed) {
            column.length = static_cast<std::uint16_t>(fixedSize(column.type));
            if (column.type != ColumnType::Boolean) {
                column.fixedOffset = static_cast<std::uint16_t>(fixedEnd);
                fixedEnd += column.length;
            }
        } else if (!column.isLongValue()) {
            ++variable;
        }
    }
    for (ColumnDefinition &column : table.columns) {
        if (column.isLongValue())
            column.variableIndex = variable++;
    }
    if (fixedEnd > kMaxRowSize)
        throw Error(ErrorCode::RecordTooLarge, "Record is too large.");
    table.maxColumns = number;
    table.variableColumns = variable;
}

} // namespace jet
