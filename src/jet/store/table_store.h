#pragma once

#include "jet/format/index_key.h"
#include "jet/format/row_codec.h"
#include "jet/format/table_definition.h"
#include "jet/store/index_tree.h"
#include "jet/store/long_value_store.h"
#include "jet/store/row_store.h"

#include <memory>
#include <string_view>

namespace jet
{

/// The bytes of a definition that starts at a page. Throws Error(Damaged).
Bytes readDefinition(Pager &pager, PageNo page);
/// All pages of a definition, the first one first.
std::vector<PageNo> definitionPages(Pager &pager, PageNo page);

/// A table with its rows, indexes, long values and the counters of its definition. Functions that
/// change something run inside a transaction. After Error(Damaged), Error(DiskFull) or
/// Error(DiskError) the transaction must be rolled back; after any other error nothing was changed.
class TableStore
{
public:
    TableStore(Pager &pager, PageNo definitionPage);

    const TableDefinition &definition() const { return m_definition; }
    const RowLayout &layout() const { return m_layout; }
    PageNo page() const { return m_page; }
    Pager &pager() const { return m_pager; }
    const RowStore &rows() const { return m_rows; }
    RowStore &rows() { return m_rows; }
    /// As the definition states. Throws Error(Damaged) for more rows than the pages can hold.
    std::uint32_t rowCount() const;

    /// Adds a row. Each value is Null or of its column's type (Memo: Text, OLE: Bytes); a null
    /// autonumber gets the next number. Throws Error(DuplicateKey), Error(NullNotAllowed),
    /// Error(RecordTooLarge).
    RowPointer insert(Row values);
    /// Replaces a row's values; long values whose column is not in `changed` stay where they are.
    /// Throws as insert() does, and Error(RecordDeleted). Returns the row pointer, which changes
    /// when the row no longer fits its page.
    RowPointer update(RowPointer row, const Row &values, const std::vector<bool> &changed);
    void erase(RowPointer row);
    /// Removes all rows and releases their pages; autonumbers continue.
    void clear();

    std::uint32_t lastAutonumber() const;
    /// Makes autonumbers continue after a number.
    void continueAutonumber(std::uint32_t last);

    Row read(RowPointer row) const;
    /// The same into an existing row, for an older row pointer.
    void readInto(RowPointer row, Row &values) const;
    Value readValue(const RowView &row, std::size_t column) const;
    /// All values into an existing row.
    void decode(const StoredRow &stored, PageNo page, Row &values) const;

    IndexTree tree(std::size_t realIndex) const;
    const std::vector<KeyColumn> &keyColumnsOf(std::size_t realIndex) const
    {
        return m_keyColumns[realIndex];
    }
    /// The columns of an index as indexes into a Row.
    const std::vector<std::size_t> &keyPlaces(std::size_t realIndex) const
    {
        return m_keyPlaces[realIndex];
    }
    /// The key of a row in an index; nullopt when the index omits such rows.
    std::optional<IndexKey> keyOf(std::size_t realIndex, const Row &values) const;
    /// The same for a stored row: a key that the engine cannot compute, as another program made it
    /// of text in an unknown order, is taken from the row's entry.
    std::optional<IndexKey> storedKeyOf(std::size_t realIndex, const Row &values,
                                        RowPointer row) const;
    /// nullopt when there is no such column; names are compared as the database program does.
    std::optional<std::size_t> columnNamed(std::u16string_view name) const;

    LongValueStore longValues(std::size_t column) const;

private:
    using Keys = std::vector<std::optional<IndexKey>>;

    std::int32_t nextAutonumber(std::size_t column) const;
    void noteAutonumber(const Row &values);
    void resolve(std::size_t column, Value &value) const;
    Row keyValues(const StoredRow &stored, PageNo page) const;
    Keys keysOf(const Row &values) const;
    Keys storedKeysOf(const Row &values, RowPointer row) const;
    Keys changedKeys(const Row &values, const std::vector<bool> &changed, const Keys &old) const;
    IndexTree::Path checkKey(std::size_t realIndex, const IndexKey &key) const;
    Bytes encodeWithPlans(const Row &values) const;
    Bytes store(const Row &values);
    Bytes longValueData(std::size_t column, const Value &value) const;
    Bytes storeChanged(RowPointer row, const Row &values, const std::vector<bool> &changed);
    void addEntry(std::size_t realIndex, IndexKey key, RowPointer row, bool count,
                  const IndexTree::Path &path = {});
    void removeEntry(std::size_t realIndex, const IndexKey &key, RowPointer row);
    void addToCount(std::size_t offset, std::int64_t difference);
    void setCount(std::size_t offset, std::uint32_t count);

    Pager &m_pager;
    PageNo m_page;
    TableDefinition m_definition;
    RowLayout m_layout;
    RowStore m_rows;
    std::vector<std::vector<KeyColumn>> m_keyColumns;
    std::vector<std::vector<std::size_t>> m_keyPlaces;
    bool m_hasLongValues = false;
};

/// Bytes of an index entry: the key, then the row id.
Bytes indexEntry(Bytes key, RowPointer row);

} // namespace jet
