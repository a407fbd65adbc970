#include "jet/store/system_tables.h"

#include "jet/format/header_page.h"

#include <algorithm>
#include <cassert>
#include <span>
#include <string_view>

namespace jet
{
namespace
{

constexpr std::uint8_t kFixed = 0x13; ///< fixed length, nullable, of a system table
constexpr std::uint8_t kVariable = 0x12;
constexpr std::uint8_t kSid = 0x32; ///< the columns with security ids have one flag more
constexpr PageNo kUsageMapPage = 6; ///< all usage maps of the system tables
constexpr std::uint16_t kMaxBytes = 510;

struct ColumnRow {
    std::u16string_view name;
    ColumnType type;
    std::uint16_t number;
    std::uint16_t variableIndex;
    std::uint16_t fixedOffset;
    std::uint16_t length;
    std::uint8_t flags;
};

constexpr ColumnRow kObjectsColumns[] = {
    {u"Connect", ColumnType::Memo, 9, 3, 0, 0, kVariable},
    {u"Database", ColumnType::Memo, 8, 2, 0, 0, kVariable},
    {u"DateCreate", ColumnType::DateTime, 4, 1, 10, 8, kFixed},
    {u"DateUpdate", ColumnType::DateTime, 5, 1, 18, 8, kFixed},
    {u"Flags", ColumnType::Long, 7, 2, 26, 4, kFixed},
    {u"ForeignName", ColumnType::Text, 10, 4, 0, kMaxBytes, kVariable},
    {u"Id", ColumnType::Long, 0, 0, 0, 4, kFixed},
    {u"Lv", ColumnType::Ole, 13, 7, 0, 0, kVariable},
    {u"LvExtra", ColumnType::Ole, 16, 10, 0, 0, kVariable},
    {u"LvModule", ColumnType::Ole, 15, 9, 0, 0, kVariable},
    {u"LvProp", ColumnType::Ole, 14, 8, 0, 0, kVariable},
    {u"Name", ColumnType::Text, 2, 0, 0, kMaxBytes, kVariable},
    {u"Owner", ColumnType::Binary, 6, 1, 0, kMaxBytes, kSid},
    {u"ParentId", ColumnType::Long, 1, 0, 4, 4, kFixed},
    {u"RmtInfoLong", ColumnType::Ole, 12, 6, 0, 0, kVariable},
    {u"RmtInfoShort", ColumnType::Binary, 11, 5, 0, kMaxBytes, kVariable},
    {u"Type", ColumnType::Integer, 3, 1, 8, 2, kFixed},
};
constexpr ColumnRow kAcesColumns[] = {
    {u"ACM", ColumnType::Long, 2, 1, 4, 4, kFixed},
    {u"FInheritable", ColumnType::Boolean, 3, 1, 0, 1, kFixed},
    {u"ObjectId", ColumnType::Long, 0, 0, 0, 4, kFixed},
    {u"SID", ColumnType::Binary, 1, 0, 0, kMaxBytes, kSid},
};
constexpr ColumnRow kQueriesColumns[] = {
    {u"Attribute", ColumnType::Byte, 1, 0, 4, 1, kFixed},
    {u"Expression", ColumnType::Memo, 5, 3, 0, 0, kVariable},
    {u"Flag", ColumnType::Integer, 6, 4, 5, 2, kFixed},
    {u"LvExtra", ColumnType::Long, 7, 4, 7, 4, kFixed},
    {u"Name1", ColumnType::Text, 3, 1, 0, kMaxBytes, kVariable},
    {u"Name2", ColumnType::Text, 4, 2, 0, kMaxBytes, kVariable},
    {u"ObjectId", ColumnType::Long, 0, 0, 0, 4, kFixed},
    {u"Order", ColumnType::Binary, 2, 0, 0, kMaxBytes, kVariable},
};
constexpr ColumnRow kRelationshipsColumns[] = {
    {u"ccolumn", ColumnType::Long, 2, 1, 4, 4, kFixed},
    {u"grbit", ColumnType::Long, 1, 1, 0, 4, kFixed},
    {u"icolumn", ColumnType::Long, 3, 1, 8, 4, kFixed},
    {u"szColumn", ColumnType::Text, 5, 2, 0, kMaxBytes, kVariable},
    {u"szObject", ColumnType::Text, 4, 1, 0, kMaxBytes, kVariable},
    {u"szReferencedColumn", ColumnType::Text, 7, 4, 0, kMaxBytes, kVariable},
    {u"szReferencedObject", ColumnType::Text, 6, 3, 0, kMaxBytes, kVariable},
    {u"szRelationship", ColumnType::Text, 0, 0, 0, kMaxBytes, kVariable},
};

TableDefinition makeDefinition(std::span<const ColumnRow> columns, std::uint8_t firstMapRow)
{
    TableDefinition table;
    table.kind = TableKind::System;
    table.maxColumns = static_cast<std::uint16_t>(columns.size());
    table.ownedPages = {kUsageMapPage, firstMapRow};
    table.freeSpacePages = {kUsageMapPage, static_cast<std::uint8_t>(firstMapRow + 1)};
    for (const ColumnRow &row : columns) {
        ColumnDefinition column;
        column.name = row.name;
        column.type = row.type;
        column.number = row.number;
        column.variableIndex = row.variableIndex;
        column.fixedOffset = row.fixedOffset;
        column.length = row.length;
        column.flags = row.flags;
        table.columns.push_back(column);
        if (!column.isFixed())
            ++table.variableColumns;
    }
    return table;
}

void addRealIndex(TableDefinition &table, std::initializer_list<std::uint16_t> columns,
                  std::uint8_t flags, PageNo root, std::uint8_t mapRow,
                  std::uint32_t uniqueEntries = 0)
{
    RealIndex index;
    for (const std::uint16_t column : columns)
        index.columns.push_back({column, true});
    index.flags = static_cast<std::uint8_t>(IndexFlag::Always | flags);
    index.root = root;
    index.usageMap = {kUsageMapPage, mapRow};
    index.uniqueEntries = uniqueEntries;
    table.realIndexes.push_back(index);
}

void addLogicalIndex(TableDefinition &table, std::u16string_view name, std::uint32_t realIndex,
                     LogicalIndexKind kind = LogicalIndexKind::Ordinary)
{
    LogicalIndex index;
    index.name = name;
    index.number = realIndex;
    index.realIndex = realIndex;
    index.kind = kind;
    table.logicalIndexes.push_back(index);
}

void addLongValueMaps(TableDefinition &table, std::uint16_t column, std::uint8_t mapRow)
{
    table.longValueMaps.push_back(
        {column, {kUsageMapPage, mapRow}, {kUsageMapPage, static_cast<std::uint8_t>(mapRow + 1)}});
}

TableDefinition objectsDefinition()
{
    TableDefinition table = makeDefinition(kObjectsColumns, 0);
    table.rowCount = 8;
    addRealIndex(table, {1, 2}, IndexFlag::Unique, 7, 16, 8);
    addRealIndex(table, {0}, IndexFlag::Unique, 8, 17, 8);
    addLogicalIndex(table, u"Id", 1, LogicalIndexKind::Primary);
    addLogicalIndex(table, u"ParentIdName", 0);
    addLongValueMaps(table, 9, 4);
    addLongValueMaps(table, 8, 2);
    addLongValueMaps(table, 13, 8);
    addLongValueMaps(table, 16, 14);
    addLongValueMaps(table, 15, 12);
    addLongValueMaps(table, 14, 10);
    addLongValueMaps(table, 12, 6);
    return table;
}

TableDefinition acesDefinition()
{
    TableDefinition table = makeDefinition(kAcesColumns, 18);
    table.rowCount = 16;
    addRealIndex(table, {0}, IndexFlag::Required, 9, 20, 8);
    addLogicalIndex(table, u"ObjectId", 0);
    return table;
}

TableDefinition queriesDefinition()
{
    TableDefinition table = makeDefinition(kQueriesColumns, 21);
    addRealIndex(table, {0, 1, 2}, IndexFlag::Unique, 10, 25);
    addLogicalIndex(table, u"ObjectIdAttribute", 0, LogicalIndexKind::Primary);
    addLongValueMaps(table, 5, 23);
    return table;
}

TableDefinition relationshipsDefinition()
{
    TableDefinition table = makeDefinition(kRelationshipsColumns, 26);
    addRealIndex(table, {0}, IndexFlag::IgnoreNulls, 11, 28);
    addRealIndex(table, {4}, IndexFlag::IgnoreNulls, 12, 29);
    addRealIndex(table, {6}, IndexFlag::IgnoreNulls, 13, 30);
    addLogicalIndex(table, u"szObject", 1);
    addLogicalIndex(table, u"szReferencedObject", 2);
    addLogicalIndex(table, u"szRelationship", 0);
    return table;
}

std::vector<std::vector<Value>> objectRows(DateTime now)
{
    const SecurityIds sids;
    constexpr std::int32_t databases = 0x0F000002;
    constexpr std::int32_t relationships = 0x0F000003;
    constexpr std::uint32_t flags = 0x80000000;
    const auto row = [&](std::int32_t id, std::int32_t parent, std::u16string_view name,
                         ObjectType type, const Bytes &owner) {
        return makeObjectRow({id, parent, Text(name), type, owner, flags, now});
    };
    const auto table = [&](SystemTable which, std::u16string_view name) {
        return row(static_cast<std::int32_t>(systemTablePage(which)), kTablesContainerId, name,
                   ObjectType::Table, sids.engine);
    };
    return {
        row(kTablesContainerId, kRootContainerId, u"Tables", ObjectType::Container, sids.engine),
        row(databases, kRootContainerId, u"Databases", ObjectType::Container, sids.engine),
        row(relationships, kRootContainerId, u"Relationships", ObjectType::Container, sids.engine),
        row(kDatabaseObjectId, databases, u"MSysDb", ObjectType::Database, sids.admin),
        table(SystemTable::Objects, u"MSysObjects"),
        table(SystemTable::Aces, u"MSysACEs"),
        table(SystemTable::Queries, u"MSysQueries"),
        table(SystemTable::Relationships, u"MSysRelationships"),
    };
}

/// The permissions the database program gives, without those of the workgroup's Admins group: its
/// id belongs to one installation.
std::vector<std::vector<Value>> aceRows()
{
    const SecurityIds sids;
    return {
        makeAceRow(0x0F000001, sids.creator, 0xF00FE, true),
        makeAceRow(0x0F000001, sids.admin, kFullTablePermissions, true),
        makeAceRow(0x0F000001, sids.users, kFullTablePermissions, true),
        makeAceRow(0x0F000002, sids.admin, 0x60000, false),
        makeAceRow(0x0F000003, sids.creator, 0xF00FE, true),
        makeAceRow(0x0F000003, sids.admin, 0x60001, false),
        makeAceRow(0x0F000003, sids.users, 0xFFFFF, true),
        makeAceRow(kDatabaseObjectId, sids.admin, 0x6000E, false),
        makeAceRow(kDatabaseObjectId, sids.users, 0x0000E, false),
        makeAceRow(2, sids.admin, 0x60000, false),
        makeAceRow(2, sids.users, 0x14, false),
        makeAceRow(3, sids.admin, 0x60000, false),
        makeAceRow(4, sids.admin, 0x60000, false),
        makeAceRow(4, sids.users, 0x14, false),
        makeAceRow(5, sids.admin, 0xE0000, false),
        makeAceRow(5, sids.users, 0x14, false),
    };
}

} // namespace

PageNo systemTablePage(SystemTable table)
{
    return kObjectsDefinitionPage + static_cast<PageNo>(table);
}

TableDefinition systemTableDefinition(SystemTable table)
{
    switch (table) {
    case SystemTable::Objects:
        return objectsDefinition();
    case SystemTable::Aces:
        return acesDefinition();
    case SystemTable::Queries:
        return queriesDefinition();
    case SystemTable::Relationships:
        return relationshipsDefinition();
    }
    return {};
}

std::vector<Value> makeObjectRow(const ObjectRow &row)
{
    std::vector<Value> values(std::size(kObjectsColumns));
    const auto set = [&values](std::u16string_view column, Value value) {
        const auto *found = std::ranges::find(kObjectsColumns, column, &ColumnRow::name);
        assert(found != std::end(kObjectsColumns));
        values[static_cast<std::size_t>(found - std::begin(kObjectsColumns))] = std::move(value);
    };
    set(u"Id", row.id);
    set(u"ParentId", row.parentId);
    set(u"Name", row.name);
    set(u"Type", static_cast<std::int16_t>(row.type));
    set(u"Owner", row.owner);
    set(u"Flags", static_cast<std::int32_t>(row.flags));
    set(u"DateCreate", row.created);
    set(u"DateUpdate", row.created);
    return values;
}

std::vector<Value> makeAceRow(std::int32_t objectId, const Bytes &sid, std::int32_t permissions,
                              bool inheritable)
{
    return {permissions, inheritable, objectId, sid};
}

std::vector<std::vector<Value>> systemTableRows(SystemTable table, DateTime now)
{
    switch (table) {
    case SystemTable::Objects:
        return objectRows(now);
    case SystemTable::Aces:
        return aceRows();
    case SystemTable::Queries:
    case SystemTable::Relationships:
        break;
    }
    return {};
}

} // namespace jet
