#include "jet/format/make_definition.h"

#include "jet/format/index_key.h"
#include "jet/utf8.h"

#include <algorithm>

namespace jet
{
namespace
{

constexpr std::uint16_t kMaxSize = 255;
constexpr std::size_t kMaxIndexes = 32;

[[noreturn]] void refuse(const std::string &what)
{
    throw Error(ErrorCode::InvalidArgument, what);
}

/// Throws when a name occurs twice in a list of columns or indexes.
template <typename List>
void checkNames(const List &list)
{
    for (auto item = list.begin(); item != list.end(); ++item) {
        checkName(item->name);
        const bool taken = std::any_of(list.begin(), item, [&](const auto &earlier) {
            return sameName(earlier.name, item->name);
        });
        if (taken)
            throw Error(ErrorCode::DuplicateItem, "Cannot append: an object with the name '" +
                                                      toUtf8(item->name) + "' already exists.");
    }
}

std::uint16_t lengthOf(const ColumnDesign &design)
{
    const std::uint16_t size = design.size == 0 ? kMaxSize : design.size;
    switch (design.type) {
    case ColumnType::Text:
    case ColumnType::Binary:
        if (size > kMaxSize)
            refuse("Column '" + toUtf8(design.name) + "' is longer than 255.");
        return design.type == ColumnType::Text ? static_cast<std::uint16_t>(2 * size) : size;
    default:
        return static_cast<std::uint16_t>(fixedSize(design.type));
    }
}

ColumnDefinition makeColumn(const ColumnDesign &design)
{
    ColumnDefinition column;
    column.name = design.name;
    column.type = design.type;
    if (design.type == ColumnType::Block)
        refuse("Column '" + toUtf8(design.name) + "' is of a type for system tables only.");
    column.length = lengthOf(design);
    column.compressible = design.type == ColumnType::Text || design.type == ColumnType::Memo;
    if (design.autonumber) {
        if (design.type != ColumnType::Long)
            refuse("Only a column of type Long can count by itself.");
        column.flags |= ColumnFlag::Autonumber;
    }
    if (design.type == ColumnType::Numeric) {
        if (design.precision < 1 || design.precision > 28 || design.scale > design.precision)
            refuse("Column '" + toUtf8(design.name) + "' has an impossible number of digits.");
        column.precision = design.precision;
        column.scale = design.scale;
    }
    return column;
}

RealIndex makeIndex(const IndexDesign &design, const TableDefinition &table)
{
    if (design.columns.empty() || design.columns.size() > kMaxIndexColumns)
        refuse("Index '" + toUtf8(design.name) + "' needs 1 to 10 columns.");
    RealIndex index;
    for (const IndexColumnDesign &part : design.columns) {
        const auto column =
            std::ranges::find_if(table.columns, [&](const ColumnDefinition &candidate) {
                return sameName(candidate.name, part.column);
            });
        if (column == table.columns.end())
            throw Error(ErrorCode::NoSuchItem,
                        "Item not found in this collection: column '" + toUtf8(part.column) + "'.");
        if (column->isLongValue())
            refuse("Column '" + toUtf8(part.column) + "' cannot be indexed.");
        index.columns.push_back({column->number, !part.descending});
    }
    if (design.primary || design.unique)
        index.flags |= IndexFlag::Unique;
    if (design.primary || design.required)
        index.flags |= IndexFlag::Required;
    if (design.ignoreNulls)
        index.flags |= IndexFlag::IgnoreNulls;
    return index;
}

} // namespace

void checkName(const Text &name)
{
    const bool hasBad = std::ranges::any_of(name, [](char16_t unit) {
        return unit < u' ' || unit == 0x7F || Text(u".![]`").find(unit) != Text::npos;
    });
    if (name.empty() || name.size() > kMaxNameLength || hasBad || name.front() == u' ')
        throw Error(ErrorCode::InvalidName, "'" + toUtf8(name) + "' is not a valid name.");
}

TableDefinition makeDefinition(const TableDesign &design)
{
    checkName(design.name);
    checkNames(design.columns);
    checkNames(design.indexes);
    if (design.columns.empty())
        refuse("Table '" + toUtf8(design.name) + "' has no columns.");
    if (design.indexes.size() > kMaxIndexes ||
        std::ranges::count(design.indexes, true, &IndexDesign::primary) > 1)
        refuse("Table '" + toUtf8(design.name) + "' has too many indexes.");

    TableDefinition table;
    for (const ColumnDesign &column : design.columns)
        table.columns.push_back(makeColumn(column));
    layOutColumns(table);
    for (const ColumnDefinition &column : table.columns) {
        if (column.isLongValue())
            table.longValueMaps.push_back({column.number, {}, {}});
    }
    for (const IndexDesign &index : design.indexes) {
        LogicalIndex logical;
        logical.name = index.name;
        logical.number = logical.realIndex = static_cast<std::uint32_t>(table.realIndexes.size());
        logical.kind = index.primary ? LogicalIndexKind::Primary : LogicalIndexKind::Ordinary;
        table.realIndexes.push_back(makeIndex(index, table));
        table.logicalIndexes.push_back(std::move(logical));
    }
    // Other programs list them by name.
    std::ranges::sort(table.logicalIndexes, {}, &LogicalIndex::name);
    return table;
}

TableDesign designOf(const Text &name, const TableDefinition &definition)
{
    TableDesign design;
    design.name = name;
    for (const ColumnDefinition &column : definition.columns) {
        ColumnDesign copy;
        copy.name = column.name;
        copy.type = column.type;
        if (column.type == ColumnType::Text)
            copy.size = static_cast<std::uint16_t>(column.length / 2);
        else if (column.type == ColumnType::Binary)
            copy.size = column.length;
        copy.autonumber = column.isAutonumber();
        copy.precision = column.precision;
        copy.scale = column.scale;
        design.columns.push_back(std::move(copy));
    }
    for (const LogicalIndex &logical : definition.logicalIndexes) {
        if (logical.kind == LogicalIndexKind::Foreign)
            continue; // belongs to a relationship, not to the table alone
        const RealIndex &real = definition.realIndexes[logical.realIndex];
        IndexDesign copy;
        copy.name = logical.name;
        for (const IndexColumn &part : real.columns)
            copy.columns.push_back(
                {definition.columns[definition.columnAt(part.column)].name, !part.ascending});
        copy.primary = logical.kind == LogicalIndexKind::Primary;
        copy.unique = real.isUnique();
        copy.required = real.isRequired();
        copy.ignoreNulls = real.ignoresNulls();
        design.indexes.push_back(std::move(copy));
    }
    return design;
}

} // namespace jet
