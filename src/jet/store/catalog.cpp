#include "jet/store/catalog.h"

#include "jet/format/header_page.h"
#include "jet/store/index_cursor.h"
#include "jet/utf8.h"

#include <algorithm>

namespace jet
{
namespace
{

constexpr PageNo kPageOfId = 0x00FFFFFF; ///< the part of an object's id that is its page
/// Creator is a placeholder, no user; its id is the system owner's with this bit pattern inverted.
constexpr std::uint8_t kCreatorMask = 0x07;

std::size_t columnOf(const TableStore &table, std::u16string_view name)
{
    const auto column = table.columnNamed(name);
    if (!column)
        throwDamaged("a system table lacks the column " + toUtf8(name), table.page());
    return *column;
}

/// The real index whose columns are these, in this order.
std::optional<std::size_t> indexOn(const TableStore &table, const std::vector<std::size_t> &places)
{
    for (std::size_t index = 0; index < table.definition().realIndexes.size(); ++index) {
        if (table.keyPlaces(index) == places)
            return index;
    }
    return std::nullopt;
}

} // namespace

Catalog::Catalog(Pager &pager)
    : m_pager(pager),
      m_objects(pager, kObjectsDefinitionPage), m_columns{columnOf(m_objects, u"Id"),
                                                          columnOf(m_objects, u"ParentId"),
                                                          columnOf(m_objects, u"Name"),
                                                          columnOf(m_objects, u"Type"),
                                                          columnOf(m_objects, u"DateCreate"),
                                                          columnOf(m_objects, u"DateUpdate"),
                                                          columnOf(m_objects, u"Owner"),
                                                          columnOf(m_objects, u"Flags"),
                                                          columnOf(m_objects, u"LvProp")},
      m_nameIndex(indexOn(m_objects, {m_columns.parentId, m_columns.name}))
{
}

std::int32_t Catalog::longAt(const Row &values, std::size_t column) const
{
    const auto *number = std::get_if<std::int32_t>(&values[column]);
    return number != nullptr ? *number : 0;
}

bool Catalog::isTable(const Row &values) const
{
    const auto *type = std::get_if<std::int16_t>(&values[m_columns.type]);
    return type != nullptr && *type == static_cast<std::int16_t>(ObjectType::Table);
}

Catalog::Entry Catalog::entryAt(RowPointer row, const Row &values) const
{
    Entry entry;
    if (const Text *name = std::get_if<Text>(&values[m_columns.name]))
        entry.name = *name;
    entry.definition = static_cast<PageNo>(longAt(values, m_columns.id)) & kPageOfId;
    entry.isSystem =
        (static_cast<std::uint32_t>(longAt(values, m_columns.flags)) & kSystemObjectFlags) != 0;
    entry.row = row;
    return entry;
}

std::vector<Catalog::Entry> Catalog::tables() const
{
    std::vector<Entry> all;
    for (auto row = m_objects.rows().next({}); row;) {
        const Row values = m_objects.read(*row);
        if (isTable(values))
            all.push_back(entryAt(*row, values));
        row = m_objects.rows().next(behind(*row));
    }
    return all;
}

void Catalog::refuseOtherObjects() const
{
    constexpr std::int16_t kOrdinary[] = {static_cast<std::int16_t>(ObjectType::Table),
                                          static_cast<std::int16_t>(ObjectType::Database),
                                          static_cast<std::int16_t>(ObjectType::Container)};
    for (auto row = m_objects.rows().next({}); row; row = m_objects.rows().next(behind(*row))) {
        const Row values = m_objects.read(*row);
        const auto *type = std::get_if<std::int16_t>(&values[m_columns.type]);
        if (type == nullptr || std::ranges::find(kOrdinary, *type) == std::end(kOrdinary))
            throw Error(ErrorCode::NotSupported, "The database holds '" +
                                                     toUtf8(entryAt(*row, values).name) +
                                                     "', which is no table and would be lost.");
    }
    const auto isEveryones = [](PageNo definition) {
        return std::ranges::any_of(
            kSystemTables, [&](SystemTable table) { return systemTablePage(table) == definition; });
    };
    for (const Entry &entry : tables()) {
        if (!entry.isSystem || isEveryones(entry.definition))
            continue;
        if (TableStore(m_pager, entry.definition).rows().next({}))
            throw Error(ErrorCode::NotSupported,
                        "The database program keeps records in its table '" + toUtf8(entry.name) +
                            "', which would be lost.");
    }
}

std::optional<RowPointer> Catalog::rowNamed(const Text &name) const
{
    if (m_nameIndex) {
        Row values(m_objects.definition().columns.size());
        values[m_columns.parentId] = kTablesContainerId;
        values[m_columns.name] = name;
        try {
            const auto key = m_objects.keyOf(*m_nameIndex, values);
            IndexCursor cursor(m_objects.tree(*m_nameIndex));
            const bool found = cursor.seek(key->bytes) && cursor.hasKey(key->bytes);
            return found ? std::optional(cursor.row()) : std::nullopt;
        } catch (const Error &error) {
            if (error.code() != ErrorCode::NotSupported)
                throw;
        }
    }
    // A name with letters of unknown order is found by a scan.
    for (const Entry &entry : tables()) {
        if (entry.name == name)
            return entry.row;
    }
    return std::nullopt;
}

std::optional<Catalog::Entry> Catalog::find(const Text &name) const
{
    const auto row = rowNamed(name);
    if (!row)
        return std::nullopt;
    const Row values = m_objects.read(*row);
    if (!isTable(values))
        return std::nullopt;
    return entryAt(*row, values);
}

void Catalog::checkIsFree(const Text &name) const
{
    if (rowNamed(name))
        throw Error(ErrorCode::ObjectExists, "Table '" + toUtf8(name) + "' already exists.");
}

Bytes Catalog::ownerOfNewTables() const
{
    Bytes owner = SecurityIds().admin;
    for (auto row = m_objects.rows().next({}); row;) {
        const Row values = m_objects.read(*row);
        if (longAt(values, m_columns.id) == kDatabaseObjectId) {
            if (const Bytes *found = std::get_if<Bytes>(&values[m_columns.owner]))
                owner = *found;
            break;
        }
        row = m_objects.rows().next(behind(*row));
    }
    return owner;
}

void Catalog::add(const Text &name, PageNo definition, DateTime now)
{
    checkIsFree(name);
    Row values(m_objects.definition().columns.size());
    values[m_columns.id] = static_cast<std::int32_t>(definition);
    values[m_columns.parentId] = kTablesContainerId;
    values[m_columns.name] = name;
    values[m_columns.type] = static_cast<std::int16_t>(ObjectType::Table);
    values[m_columns.created] = now;
    values[m_columns.updated] = now;
    values[m_columns.owner] = ownerOfNewTables();
    values[m_columns.flags] = std::int32_t{0};
    m_objects.insert(std::move(values));
    addPermissions(static_cast<std::int32_t>(definition));
}

std::vector<RowPointer> Catalog::permissionsOf(TableStore &aces, std::int32_t object) const
{
    std::vector<RowPointer> found;
    const std::size_t objectId = columnOf(aces, u"ObjectId");
    const auto index = indexOn(aces, {objectId});
    if (!index)
        return found;
    Row values(aces.definition().columns.size());
    values[objectId] = object;
    const auto key = aces.keyOf(*index, values);
    IndexCursor cursor(aces.tree(*index));
    for (bool valid = cursor.seek(key->bytes); valid && cursor.hasKey(key->bytes);
         valid = cursor.next())
        found.push_back(cursor.row());
    return found;
}

/// The stored id for the creator of an object; Null when it is unknown.
Value Catalog::creatorId() const
{
    const auto self = rowNamed(u"MSysObjects");
    if (!self)
        return Null();
    const Row values = m_objects.read(*self);
    const Bytes *owner = std::get_if<Bytes>(&values[m_columns.owner]);
    if (owner == nullptr || owner->size() != 2)
        return Null();
    return Bytes{(*owner)[0], static_cast<std::uint8_t>((*owner)[1] ^ kCreatorMask)};
}

/// Adds the permissions that all tables inherit.
void Catalog::addPermissions(std::int32_t object)
{
    TableStore aces(m_pager, systemTablePage(SystemTable::Aces));
    const std::size_t objectId = columnOf(aces, u"ObjectId");
    const std::size_t sid = columnOf(aces, u"SID");
    const std::size_t inheritable = columnOf(aces, u"FInheritable");
    const Value creator = creatorId();

    for (const RowPointer &row : permissionsOf(aces, kTablesContainerId)) {
        Row values = aces.read(row);
        const bool *inherited = std::get_if<bool>(&values[inheritable]);
        if (inherited == nullptr || !*inherited || values[sid] == creator)
            continue;
        values[objectId] = object;
        values[inheritable] = false;
        aces.insert(std::move(values));
    }
}

void Catalog::remove(const Entry &entry)
{
    const auto id = longAt(m_objects.read(entry.row), m_columns.id);
    m_objects.erase(entry.row);
    TableStore aces(m_pager, systemTablePage(SystemTable::Aces));
    for (const RowPointer &row : permissionsOf(aces, id))
        aces.erase(row);
}

void Catalog::rename(const Entry &entry, const Text &name, DateTime now)
{
    if (!sameName(entry.name, name))
        checkIsFree(name);
    Row values = m_objects.read(entry.row);
    values[m_columns.name] = name;
    values[m_columns.updated] = now;
    std::vector<bool> changed(values.size(), false);
    changed[m_columns.name] = changed[m_columns.updated] = true;
    m_objects.update(entry.row, values, changed);
}

Value Catalog::properties(const Entry &entry) const
{
    return m_objects.read(entry.row)[m_columns.properties];
}

void Catalog::setProperties(const Text &name, const Value &properties)
{
    const auto entry = find(name);
    Row values = m_objects.read(entry->row);
    values[m_columns.properties] = properties;
    std::vector<bool> changed(values.size(), false);
    changed[m_columns.properties] = true;
    m_objects.update(entry->row, values, changed);
}

void throwNoSuchTable(const Text &name)
{
    throw Error(ErrorCode::NoSuchTable,
                "The Jet database engine cannot find the input table '" + toUtf8(name) + "'.");
}

} // namespace jet
