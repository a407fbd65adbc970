#include "jet/store/table_store.h"

#include "jet/format/table_definition_codec.h"
#include "jet/format/text_codec.h"
#include "jet/store/usage_map.h"

#include <algorithm>
#include <limits>

namespace jet
{
namespace
{

/// Calls a function with each page of a definition and its content.
template <typename Visit>
Bytes walkDefinition(Pager &pager, PageNo page, Visit &&visit)
{
    Bytes definition;
    while (page != 0) {
        const PageRef content = pager.read(page);
        visit(page);
        page = onPage(page, [&] { return appendDefinitionPage(definition, *content); });
    }
    return definition;
}

TableDefinition loadDefinition(Pager &pager, PageNo page)
{
    const Bytes definition = readDefinition(pager, page);
    return onPage(page, [&] { return parseTableDefinition(definition); });
}

} // namespace

Bytes readDefinition(Pager &pager, PageNo page)
{
    return walkDefinition(pager, page, [](PageNo) {});
}

std::vector<PageNo> definitionPages(Pager &pager, PageNo page)
{
    std::vector<PageNo> pages;
    walkDefinition(pager, page, [&](PageNo number) { pages.push_back(number); });
    return pages;
}

TableStore::TableStore(Pager &pager, PageNo definitionPage)
    : m_pager(pager), m_page(definitionPage), m_definition(loadDefinition(pager, definitionPage)),
      m_layout(makeRowLayout(m_definition)),
      m_rows(pager, definitionPage, m_definition.ownedPages, m_definition.freeSpacePages)
{
    for (const RealIndex &index : m_definition.realIndexes) {
        m_keyColumns.push_back(onPage(m_page, [&] { return keyColumns(m_definition, index); }));
        std::vector<std::size_t> places;
        for (const IndexColumn &column : index.columns)
            places.push_back(m_definition.columnAt(column.column));
        m_keyPlaces.push_back(std::move(places));
    }
    m_hasLongValues = std::ranges::any_of(m_definition.columns, &ColumnDefinition::isLongValue);
}

std::uint32_t TableStore::rowCount() const
{
    const std::uint32_t count = readU32(*m_pager.read(m_page), kRowCountOffset);
    if (count > m_rows.capacity())
        throwDamaged("a table counts " + std::to_string(count) + " rows, more than its pages hold",
                     m_page);
    return count;
}

std::uint32_t TableStore::lastAutonumber() const
{
    return readU32(*m_pager.read(m_page), kAutonumberOffset);
}

void TableStore::continueAutonumber(std::uint32_t last)
{
    setCount(kAutonumberOffset, last);
}

std::optional<std::size_t> TableStore::columnNamed(std::u16string_view name) const
{
    const auto &columns = m_definition.columns;
    auto found = std::ranges::find(columns, name, &ColumnDefinition::name);
    if (found == columns.end())
        found = std::ranges::find_if(
            columns, [&](const ColumnDefinition &column) { return sameName(column.name, name); });
    if (found == columns.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - columns.begin());
}

LongValueStore TableStore::longValues(std::size_t column) const
{
    const auto maps = std::ranges::find(
        m_definition.longValueMaps, m_definition.columns[column].number, &LongValueMaps::column);
    if (maps == m_definition.longValueMaps.end())
        throwDamaged("a column has no pages for its long values", m_page);
    return {m_pager, *maps};
}

Value TableStore::readValue(const RowView &row, std::size_t column) const
{
    Value value = row.value(column);
    resolve(column, value);
    return value;
}

/// Replaces the reference to a long value by the value.
void TableStore::resolve(std::size_t column, Value &value) const
{
    const ColumnDefinition &definition = m_definition.columns[column];
    if (!definition.isLongValue() || isNull(value))
        return;
    Bytes data = longValues(column).read(decodeLongValueRef(std::get<Bytes>(value)));
    if (definition.type == ColumnType::Memo)
        value = decodeText(data);
    else
        value = std::move(data);
}

void TableStore::decode(const StoredRow &stored, PageNo page, Row &values) const
{
    values.resize(m_definition.columns.size());
    onPage(page, [&] {
        const RowView view(stored.bytes, m_layout);
        for (std::size_t column = 0; column < values.size(); ++column) {
            view.read(column, values[column]);
            if (m_hasLongValues)
                resolve(column, values[column]);
        }
    });
}

/// The values of the indexed columns; the others stay null.
Row TableStore::keyValues(const StoredRow &stored, PageNo page) const
{
    Row values(m_definition.columns.size());
    onPage(page, [&] {
        const RowView view(stored.bytes, m_layout);
        for (const std::vector<std::size_t> &places : m_keyPlaces) {
            for (const std::size_t column : places)
                values[column] = readValue(view, column);
        }
    });
    return values;
}

Row TableStore::read(RowPointer row) const
{
    Row values;
    readInto(row, values);
    return values;
}

void TableStore::readInto(RowPointer row, Row &values) const
{
    decode(m_rows.readOwned(row), row.page, values);
}

Bytes TableStore::longValueData(std::size_t column, const Value &value) const
{
    if (const Text *text = std::get_if<Text>(&value))
        return encodeText(*text, m_definition.columns[column].compressible);
    return std::get<Bytes>(value);
}

/// The row's bytes before its long values are stored: of the final size, with placeholders.
Bytes TableStore::encodeWithPlans(const Row &values) const
{
    if (!m_hasLongValues)
        return encodeRow(values, m_layout);
    Row planned = values;
    for (std::size_t column = 0; column < values.size(); ++column) {
        if (m_definition.columns[column].isLongValue() && !isNull(values[column]))
            planned[column] =
                encodeLongValueRef(LongValueStore::plan(longValueData(column, values[column])));
    }
    return encodeRow(planned, m_layout);
}

Bytes TableStore::store(const Row &values)
{
    if (!m_hasLongValues)
        return encodeRow(values, m_layout);
    Row stored = values;
    for (std::size_t column = 0; column < values.size(); ++column) {
        if (m_definition.columns[column].isLongValue() && !isNull(values[column]))
            stored[column] =
                encodeLongValueRef(longValues(column).write(longValueData(column, values[column])));
    }
    return encodeRow(stored, m_layout);
}

/// The lowest number above the last one assigned that no unique index holds: other programs may
/// have stored higher ones.
std::int32_t TableStore::nextAutonumber(std::size_t column) const
{
    const auto isTaken = [&](std::int32_t number) {
        const Value value = number;
        for (std::size_t index = 0; index < m_keyPlaces.size(); ++index) {
            if (m_definition.realIndexes[index].isUnique() &&
                std::ranges::equal(m_keyPlaces[index], std::span(&column, 1)) &&
                tree(index).hasKey(encodeIndexKey(std::span(&value, 1), m_keyColumns[index]).bytes))
                return true;
        }
        return false;
    };
    auto number = static_cast<std::int32_t>(lastAutonumber());
    do {
        if (number == std::numeric_limits<std::int32_t>::max())
            throw Error(ErrorCode::NotSupported, "The table has no automatic number left.");
        ++number;
    } while (isTaken(number));
    return number;
}

/// Autonumbers continue after the greatest number that a row was ever assigned.
void TableStore::noteAutonumber(const Row &values)
{
    for (std::size_t column = 0; column < values.size(); ++column) {
        const auto *number = std::get_if<std::int32_t>(&values[column]);
        if (m_definition.columns[column].isAutonumber() && number != nullptr &&
            *number > static_cast<std::int32_t>(lastAutonumber()))
            continueAutonumber(static_cast<std::uint32_t>(*number));
    }
}

RowPointer TableStore::insert(Row values)
{
    for (std::size_t column = 0; column < values.size(); ++column) {
        if (m_definition.columns[column].isAutonumber() && isNull(values[column]))
            values[column] = nextAutonumber(column);
    }
    Keys keys = keysOf(values);
    IndexTree::Path path;
    for (std::size_t index = 0; index < keys.size(); ++index) {
        if (keys[index])
            path = checkKey(index, *keys[index]);
    }
    if (keys.size() > 1)
        path.clear(); // trees of a damaged file may share pages, so no path is reused
    Bytes bytes = encodeWithPlans(values);
    if (m_hasLongValues)
        bytes = store(values);
    const RowPointer row = m_rows.insert(bytes);
    for (std::size_t index = 0; index < keys.size(); ++index) {
        if (keys[index])
            addEntry(index, std::move(*keys[index]), row, true, path);
    }
    addToCount(kRowCountOffset, 1);
    noteAutonumber(values);
    return row;
}

RowPointer TableStore::update(RowPointer row, const Row &values, const std::vector<bool> &changed)
{
    const Keys oldKeys = storedKeysOf(read(row), row);
    const Keys newKeys = changedKeys(values, changed, oldKeys);
    const auto sameKey = [&](std::size_t index) {
        const auto &left = oldKeys[index];
        const auto &right = newKeys[index];
        return left.has_value() == right.has_value() && (!left || left->bytes == right->bytes);
    };
    for (std::size_t index = 0; index < newKeys.size(); ++index) {
        if (newKeys[index] && !sameKey(index))
            checkKey(index, *newKeys[index]);
    }
    Bytes bytes = encodeWithPlans(values);
    if (m_hasLongValues)
        bytes = storeChanged(row, values, changed);
    const RowPointer place = m_rows.replace(row, bytes);
    for (std::size_t index = 0; index < newKeys.size(); ++index) {
        if (place == row && sameKey(index))
            continue;
        if (oldKeys[index])
            removeEntry(index, *oldKeys[index], row);
        if (newKeys[index])
            addEntry(index, *newKeys[index], place, !sameKey(index));
    }
    noteAutonumber(values);
    return place;
}

/// Replaces the long values that have changed. Returns the row's bytes.
Bytes TableStore::storeChanged(RowPointer row, const Row &values, const std::vector<bool> &changed)
{
    const StoredRow stored = m_rows.read(row);
    const RowView view(stored.bytes, m_layout);
    Row references = values;
    for (std::size_t column = 0; column < values.size(); ++column) {
        if (!m_definition.columns[column].isLongValue())
            continue;
        const Value reference = view.value(column);
        if (!changed[column]) {
            references[column] = reference;
            continue;
        }
        if (!isNull(reference))
            longValues(column).erase(decodeLongValueRef(std::get<Bytes>(reference)));
        if (!isNull(values[column]))
            references[column] =
                encodeLongValueRef(longValues(column).write(longValueData(column, values[column])));
    }
    return encodeRow(references, m_layout);
}

void TableStore::erase(RowPointer row)
{
    const StoredRow stored = m_rows.readOwned(row);
    const Keys keys = storedKeysOf(keyValues(stored, row.page), row);
    for (std::size_t index = 0; index < keys.size(); ++index) {
        if (keys[index])
            removeEntry(index, *keys[index], row);
    }
    if (m_hasLongValues) {
        const RowView view(stored.bytes, m_layout);
        for (std::size_t column = 0; column < m_definition.columns.size(); ++column) {
            if (m_definition.columns[column].isLongValue() && !view.isNull(column))
                longValues(column).erase(decodeLongValueRef(view.stored(column)));
        }
    }
    m_rows.erase(row);
    addToCount(kRowCountOffset, -1);
}

void TableStore::clear()
{
    std::vector<PageNo> unused;
    const auto alsoUnused = [&](const std::vector<PageNo> &pages) {
        unused.insert(unused.end(), pages.begin(), pages.end());
    };
    for (std::size_t index = 0; index < m_definition.realIndexes.size(); ++index) {
        alsoUnused(tree(index).clear());
        setCount(uniqueCountOffset(index), 0);
    }
    for (std::size_t column = 0; column < m_definition.columns.size(); ++column) {
        if (m_definition.columns[column].isLongValue())
            alsoUnused(longValues(column).clear());
    }
    alsoUnused(m_rows.clear());
    setCount(kRowCountOffset, 0);
    PageAllocator(m_pager).release(unused);
}

void TableStore::addToCount(std::size_t offset, std::int64_t difference)
{
    PageBuffer &page = m_pager.edit(m_page);
    const std::int64_t count = readU32(page, offset) + difference;
    // The count in files of other programs may be too low.
    writeU32(page, offset, static_cast<std::uint32_t>(std::max<std::int64_t>(count, 0)));
}

void TableStore::setCount(std::size_t offset, std::uint32_t count)
{
    writeU32(m_pager.edit(m_page), offset, count);
}

} // namespace jet
