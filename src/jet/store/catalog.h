#pragma once

#include "jet/store/system_tables.h"
#include "jet/store/table_store.h"

#include <optional>
#include <vector>

namespace jet
{

/// The catalog: the list of objects in a database, kept in its system tables.
class Catalog
{
public:
    struct Entry {
        Text name;
        PageNo definition = 0; ///< first definition page, also the object's id
        bool isSystem = false;
        RowPointer row;
    };

    explicit Catalog(Pager &pager);

    /// All tables of this file, in the order of their creation; links to other files do not count.
    std::vector<Entry> tables() const;
    std::optional<Entry> find(const Text &name) const;

    /// Throws Error(NotSupported) when there is anything but tables: queries, links, forms, or rows
    /// in system tables that a new database does not have.
    void refuseOtherObjects() const;
    /// Throws Error(ObjectExists) when a table or query already has the name.
    void checkIsFree(const Text &name) const;
    void add(const Text &name, PageNo definition, DateTime now);
    void remove(const Entry &entry);
    void rename(const Entry &entry, const Text &name, DateTime now);

    /// The properties that the database program stores with a table and its columns, such as
    /// captions and default values; the engine only copies them.
    Value properties(const Entry &entry) const;
    void setProperties(const Text &name, const Value &properties);

private:
    /// Places of the columns of MSysObjects.
    struct Columns {
        std::size_t id, parentId, name, type, created, updated, owner, flags, properties;
    };

    std::optional<RowPointer> rowNamed(const Text &name) const;
    Entry entryAt(RowPointer row, const Row &values) const;
    bool isTable(const Row &values) const;
    std::int32_t longAt(const Row &values, std::size_t column) const;
    Bytes ownerOfNewTables() const;
    Value creatorId() const;
    std::vector<RowPointer> permissionsOf(TableStore &aces, std::int32_t object) const;
    void addPermissions(std::int32_t object);

    Pager &m_pager;
    TableStore m_objects;
    Columns m_columns;
    std::optional<std::size_t> m_nameIndex; ///< real index on ParentId and Name
};

[[noreturn]] void throwNoSuchTable(const Text &name);

} // namespace jet
