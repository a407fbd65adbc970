#include "jet/store/row_walk.h"

#include "jet/format/column_value.h"
#include "jet/store/usage_map.h"

#include <algorithm>
#include <string>

namespace jet
{
namespace
{

class TableWalk final : public RowWalk
{
public:
    bool first(const TableStore &table) override { return settle(table, table.rows().next({})); }
    bool last(const TableStore &table) override
    {
        return settle(table, table.rows().previous({0xFFFFFF, 0xFF}));
    }
    bool next(const TableStore &table) override { return tryNext(table); }
    bool tryNext(const TableStore &table) override
    {
        return nextWithinPage(table) || settle(table, table.rows().next(behind(m_row)));
    }
    bool previous(const TableStore &table) override
    {
        if (m_row.row != 0)
            return settle(table, table.rows().previous(
                                     {m_row.page, static_cast<std::uint8_t>(m_row.row - 1)}));
        return m_row.page > 0 && settle(table, table.rows().previous({m_row.page - 1, 0xFF}));
    }
    RowPointer row() const override { return m_row; }
    StoredRow stored(const TableStore &table) const override
    {
        if (!isCurrent(table) || m_slot.isPointer())
            return RowWalk::stored(table);
        return {m_page, PageBytes(*m_page).subspan(m_slot.start, m_slot.length)};
    }

private:
    bool isCurrent(const TableStore &table) const
    {
        return m_page != nullptr && m_version == table.pager().version();
    }
    bool nextWithinPage(const TableStore &table)
    {
        if (!isCurrent(table))
            return false;
        for (std::size_t slot = m_row.row + std::size_t{1}; slot < slotCount(*m_page); ++slot) {
            const Slot found = slotAt(*m_page, m_row.page, slot);
            if (!found.isRow())
                continue;
            m_slot = found;
            m_row.row = static_cast<std::uint8_t>(slot);
            return true;
        }
        return false;
    }
    bool settle(const TableStore &table, std::optional<RowPointer> found)
    {
        if (!found)
            return false;
        PageRef page = table.rows().page(found->page);
        m_slot = slotAt(*page, found->page, found->row);
        m_row = *found;
        m_page = std::move(page);
        m_version = table.pager().version();
        return true;
    }

    RowPointer m_row;
    PageRef m_page;
    Slot m_slot;
    std::uint64_t m_version = 0;
};

/// The least bytes greater than everything that begins with `prefix`; empty when there are none.
Bytes behindPrefix(Bytes prefix)
{
    while (!prefix.empty() && prefix.back() == 0xFF)
        prefix.pop_back();
    if (!prefix.empty())
        ++prefix.back();
    return prefix;
}

class IndexWalk final : public RowWalk
{
public:
    IndexWalk(const TableStore &table, std::size_t realIndex, bool backward)
        : m_index(realIndex), m_backward(backward), m_cursor(table.tree(realIndex))
    {
    }

    bool first(const TableStore &) override
    {
        return m_backward ? m_cursor.moveLast() : m_cursor.moveFirst();
    }
    bool last(const TableStore &) override
    {
        return m_backward ? m_cursor.moveFirst() : m_cursor.moveLast();
    }
    bool next(const TableStore &) override
    {
        return m_backward ? m_cursor.previous() : m_cursor.next();
    }
    bool previous(const TableStore &) override
    {
        return m_backward ? m_cursor.next() : m_cursor.previous();
    }
    RowPointer row() const override { return m_cursor.row(); }

    bool isOrderedBy(const TableStore &table, const std::vector<bool> &changed) const override
    {
        return std::ranges::any_of(table.keyPlaces(m_index),
                                   [&](std::size_t place) { return changed[place]; });
    }

    bool seek(const TableStore &table, std::span<const Value> key) override
    {
        const auto &columns = table.keyColumnsOf(m_index);
        if (key.empty() || key.size() > columns.size())
            throw Error(ErrorCode::InvalidArgument, "The key has too few or too many values.");
        Row values;
        for (std::size_t i = 0; i < key.size(); ++i)
            values.push_back(
                columnValue(key[i], table.definition().columns[table.keyPlaces(m_index)[i]]));
        const Bytes bytes = encodeIndexKey(values, std::span(columns).first(key.size())).bytes;
        if (!m_backward)
            return m_cursor.seek(bytes);
        const Bytes behind = behindPrefix(bytes);
        if (behind.empty() || !m_cursor.seek(behind))
            return m_cursor.moveLast();
        return m_cursor.previous();
    }

private:
    std::size_t m_index;
    bool m_backward;
    IndexCursor m_cursor;
};

class SortedWalk final : public RowWalk
{
public:
    explicit SortedWalk(std::vector<RowPointer> rows) : m_rows(std::move(rows)) {}

    bool first(const TableStore &table) override { return forwardFrom(table, 0); }
    bool last(const TableStore &table) override { return backwardFrom(table, m_rows.size()); }
    bool next(const TableStore &table) override { return forwardFrom(table, m_place + 1); }
    bool previous(const TableStore &table) override { return backwardFrom(table, m_place); }
    RowPointer row() const override { return m_rows[m_place]; }
    void moved(RowPointer place) override { m_rows[m_place] = place; }

private:
    bool forwardFrom(const TableStore &table, std::size_t place)
    {
        while (place < m_rows.size() && !table.rows().contains(m_rows[place]))
            ++place;
        const bool found = place < m_rows.size();
        if (found)
            m_place = place;
        return found;
    }
    bool backwardFrom(const TableStore &table, std::size_t behindPlace)
    {
        while (behindPlace > 0 && !table.rows().contains(m_rows[behindPlace - 1]))
            --behindPlace;
        const bool found = behindPlace > 0;
        if (found)
            m_place = behindPlace - 1;
        return found;
    }

    std::vector<RowPointer> m_rows;
    std::size_t m_place = 0;
};

} // namespace

bool RowWalk::seek(const TableStore &, std::span<const Value>)
{
    throw Error(ErrorCode::InvalidArgument, "Only a cursor of an index can look for a key.");
}

bool RowWalk::isOrderedBy(const TableStore &, const std::vector<bool> &) const
{
    return false;
}

StoredRow RowWalk::stored(const TableStore &table) const
{
    return table.rows().readOwned(row());
}

std::unique_ptr<RowWalk> makeTableWalk()
{
    return std::make_unique<TableWalk>();
}

std::unique_ptr<RowWalk> makeIndexWalk(const TableStore &table, std::size_t realIndex,
                                       bool backward)
{
    return std::make_unique<IndexWalk>(table, realIndex, backward);
}

std::unique_ptr<RowWalk> makeSortedWalk(const TableStore &table, std::size_t column,
                                        bool descending)
{
    const ColumnDefinition &definition = table.definition().columns[column];
    KeyColumn order;
    order.type = definition.type;
    order.sortOrder = definition.sortOrder;
    order.sortVersion = definition.sortVersion;
    order.inMemory = true;

    // Short keys stay inside the string object, so a day of numbers takes a few megabytes.
    std::vector<std::pair<std::string, RowPointer>> keys;
    for (auto row = table.rows().next({}); row; row = table.rows().next(behind(*row))) {
        const StoredRow stored = table.rows().read(*row);
        const Value value = table.readValue(RowView(stored.bytes, table.layout()), column);
        const Bytes key = encodeIndexKey(std::span(&value, 1), std::span(&order, 1)).bytes;
        keys.emplace_back(std::string(key.begin(), key.end()), *row);
    }
    std::ranges::sort(keys, [&](const auto &left, const auto &right) {
        const int difference = left.first.compare(right.first);
        if (difference != 0)
            return descending ? difference > 0 : difference < 0;
        return left.second < right.second;
    });
    std::vector<RowPointer> rows;
    rows.reserve(keys.size());
    std::ranges::transform(keys, std::back_inserter(rows),
                           &std::pair<std::string, RowPointer>::second);
    return std::make_unique<SortedWalk>(std::move(rows));
}

} // namespace jet
