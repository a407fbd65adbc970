#pragma once

#include "jet/format/table_definition.h"
#include "jet/value.h"

#include <array>
#include <cstdint>
#include <vector>

namespace jet
{

// The four tables every database has and the rows they hold in an empty one.

enum class SystemTable { Objects, Aces, Queries, Relationships };
inline constexpr std::array kSystemTables{SystemTable::Objects, SystemTable::Aces,
                                          SystemTable::Queries, SystemTable::Relationships};

/// Column Id of MSysObjects: the root, the container of all tables, the database itself.
inline constexpr std::int32_t kRootContainerId = 0x0F000000;
inline constexpr std::int32_t kTablesContainerId = 0x0F000001;
inline constexpr std::int32_t kDatabaseObjectId = 0x10000000;

/// Column Type of MSysObjects.
enum class ObjectType : std::int16_t {
    Table = 1,
    Database = 2,
    Container = 3,
    Query = 5,
    Link = 6
};

/// Bits of column Flags of MSysObjects that a system table has.
inline constexpr std::uint32_t kSystemObjectFlags = 0x80000002;

/// Security ids as they are stored in a file with the creation date of makeHeaderPage().
struct SecurityIds {
    Bytes admin{0xA6, 0x33};
    Bytes users{0xA7, 0x33};
    Bytes engine{0xA7, 0x31}; ///< owner of the system's objects
    Bytes creator{0xA7, 0x36};
};

/// Permission bits of ordinary tables for Admin and Users: everything but changing the owner.
inline constexpr std::int32_t kFullTablePermissions = 0xFFEFF;

/// Page of the definition, also the table's Id in MSysObjects.
PageNo systemTablePage(SystemTable table);

/// The definition in an empty database: pages, maps and counts filled in.
TableDefinition systemTableDefinition(SystemTable table);

/// A row of MSysObjects; its long values are null.
struct ObjectRow {
    std::int32_t id = 0;
    std::int32_t parentId = kTablesContainerId;
    Text name;
    ObjectType type = ObjectType::Table;
    Bytes owner;
    std::uint32_t flags = 0;
    DateTime created;
};

/// The row's values in the order of systemTableDefinition(Objects).columns. A database made by
/// another program may order its columns differently.
std::vector<Value> makeObjectRow(const ObjectRow &row);

/// A row of MSysACEs, in the order of systemTableDefinition(Aces).columns.
std::vector<Value> makeAceRow(std::int32_t objectId, const Bytes &sid, std::int32_t permissions,
                              bool inheritable);

/// The rows of a table in an empty database created at `now`, in storage order.
std::vector<std::vector<Value>> systemTableRows(SystemTable table, DateTime now);

} // namespace jet
