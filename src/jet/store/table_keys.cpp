#include "jet/format/table_definition_codec.h"
#include "jet/store/index_cursor.h"
#include "jet/store/table_store.h"

#include <algorithm>

namespace jet
{

Bytes indexEntry(Bytes key, RowPointer row)
{
    appendRowId(key, row);
    return key;
}

IndexTree TableStore::tree(std::size_t realIndex) const
{
    return {m_pager, m_page, m_definition.realIndexes[realIndex]};
}

std::optional<IndexKey> TableStore::keyOf(std::size_t realIndex, const Row &values) const
{
    IndexKey key;
    key.bytes.reserve(16); // a number or two
    for (std::size_t i = 0; i < m_keyColumns[realIndex].size(); ++i)
        appendKeyColumn(key, values[m_keyPlaces[realIndex][i]], m_keyColumns[realIndex][i]);
    if (key.allNull && m_definition.realIndexes[realIndex].ignoresNulls())
        return std::nullopt;
    return key;
}

std::optional<IndexKey> TableStore::storedKeyOf(std::size_t realIndex, const Row &values,
                                                RowPointer row) const
{
    try {
        return keyOf(realIndex, values);
    } catch (const Error &error) {
        if (error.code() != ErrorCode::NotSupported)
            throw;
    }
    IndexCursor cursor(tree(realIndex));
    for (bool found = cursor.moveFirst(); found; found = cursor.next()) {
        if (cursor.row() != row)
            continue;
        IndexKey key;
        key.bytes.assign(cursor.entry().begin(), cursor.entry().end() - kRowIdSize);
        return key;
    }
    throwDamaged("an index has no entry of a row", tree(realIndex).root());
}

TableStore::Keys TableStore::storedKeysOf(const Row &values, RowPointer row) const
{
    Keys keys;
    for (std::size_t index = 0; index < m_definition.realIndexes.size(); ++index)
        keys.push_back(storedKeyOf(index, values, row));
    return keys;
}

/// Keys of a row with its new values; the old key where no column of an index changes.
TableStore::Keys TableStore::changedKeys(const Row &values, const std::vector<bool> &changed,
                                         const Keys &old) const
{
    Keys keys;
    for (std::size_t index = 0; index < m_definition.realIndexes.size(); ++index) {
        const bool isNew = std::ranges::any_of(m_keyPlaces[index],
                                               [&](std::size_t place) { return changed[place]; });
        keys.push_back(isNew ? keyOf(index, values) : old[index]);
    }
    return keys;
}

TableStore::Keys TableStore::keysOf(const Row &values) const
{
    Keys keys;
    keys.reserve(m_definition.realIndexes.size());
    for (std::size_t index = 0; index < m_definition.realIndexes.size(); ++index)
        keys.push_back(keyOf(index, values));
    return keys;
}

/// Returns the path to the key if it had to be searched.
IndexTree::Path TableStore::checkKey(std::size_t realIndex, const IndexKey &key) const
{
    IndexTree::checkSize(key.bytes);
    const RealIndex &index = m_definition.realIndexes[realIndex];
    if (index.isRequired() && key.anyNull)
        throw Error(ErrorCode::NullNotAllowed, "Index or primary key cannot contain a Null value.");
    if (!index.isUnique() || key.anyNull)
        return {};
    const IndexTree indexTree = tree(realIndex);
    IndexTree::Path path = indexTree.descend(key.bytes);
    if (indexTree.hasKey(path, key.bytes))
        throw Error(ErrorCode::DuplicateKey,
                    "The changes you requested to the table were not successful because they would "
                    "create duplicate values in the index, primary key, or relationship.");
    return path;
}

/// `count`: the key counts as another one when the index does not hold it yet. `path`: from
/// checkKey(), when nothing has changed in the index since.
void TableStore::addEntry(std::size_t realIndex, IndexKey key, RowPointer row, bool count,
                          const IndexTree::Path &path)
{
    IndexTree index = tree(realIndex);
    const bool isNew =
        count && (m_definition.realIndexes[realIndex].isUnique() || !index.hasKey(key.bytes));
    const Bytes entry = indexEntry(std::move(key.bytes), row);
    if (path.empty())
        index.insert(entry);
    else
        index.insert(path, entry);
    if (isNew)
        addToCount(uniqueCountOffset(realIndex), 1);
}

void TableStore::removeEntry(std::size_t realIndex, const IndexKey &key, RowPointer row)
{
    tree(realIndex).erase(indexEntry(key.bytes, row));
}

} // namespace jet
