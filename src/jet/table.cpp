#include "jet/table.h"

#include "jet/format/column_value.h"
#include "jet/format/make_definition.h"
#include "jet/store/assignment.h"
#include "jet/store/row_walk.h"
#include "jet/store/session.h"
#include "jet/utf8.h"

#include <algorithm>

namespace jet
{

Table::Table(std::shared_ptr<Session> session, Text name)
    : m_session(std::move(session)), m_name(std::move(name))
{
}

TableStore &Table::store() const
{
    if (!m_store || m_structure != m_session->structure()) {
        m_store = m_session->table(m_name);
        m_structure = m_session->structure();
    }
    return *m_store;
}

TableDesign Table::design() const
{
    return m_session->read([&] { return designOf(m_name, store().definition()); });
}

std::size_t Table::column(std::u16string_view name) const
{
    return m_session->read([&] { return columnPlace(store(), name); });
}

std::uint32_t Table::recordCount() const
{
    return m_session->read([&] { return store().rowCount(); });
}

void Table::append(const Assignments &assignments)
{
    m_session->write([&] {
        TableStore &table = store();
        requireUserTable(table);
        Row row(table.definition().columns.size());
        assign(table, assignments, row);
        table.insert(std::move(row));
    });
}

void Table::appendRow(Row values)
{
    m_session->write([&] {
        TableStore &table = store();
        requireUserTable(table);
        const auto &columns = table.definition().columns;
        if (values.size() != columns.size())
            throw Error(ErrorCode::InvalidArgument, "A record needs one value for every column.");
        for (std::size_t column = 0; column < columns.size(); ++column)
            makeColumnValue(values[column], columns[column]);
        table.insert(std::move(values));
    });
}

Row Table::record(RowPointer bookmark) const
{
    return m_session->read([&] { return store().read(bookmark); });
}

void Table::deleteAll()
{
    m_session->write([&] {
        TableStore &table = store();
        requireUserTable(table);
        table.clear();
    });
}

Cursor Table::records() const
{
    return {m_session, m_name, makeTableWalk()};
}

Cursor Table::byIndex(std::u16string_view index, Order order) const
{
    return m_session->read([&]() -> Cursor {
        const TableStore &table = store();
        const auto &logical = table.definition().logicalIndexes;
        const auto found = std::ranges::find_if(logical, [&](const LogicalIndex &candidate) {
            return sameName(candidate.name, index);
        });
        if (found == logical.end())
            throw Error(ErrorCode::NoSuchItem,
                        "Item not found in this collection: index '" + toUtf8(index) + "'.");
        return {m_session, m_name,
                makeIndexWalk(table, found->realIndex, order == Order::Descending)};
    });
}

Cursor Table::sortedBy(std::u16string_view column, Order order) const
{
    return m_session->read([&]() -> Cursor {
        const TableStore &table = store();
        const std::size_t place = columnPlace(table, column);
        const bool descending = order == Order::Descending;
        for (std::size_t index = 0; index < table.definition().realIndexes.size(); ++index) {
            const RealIndex &real = table.definition().realIndexes[index];
            if (table.keyPlaces(index).front() != place || real.ignoresNulls())
                continue;
            const bool backward = descending == real.columns.front().ascending;
            return {m_session, m_name, makeIndexWalk(table, index, backward)};
        }
        return {m_session, m_name, makeSortedWalk(table, place, descending)};
    });
}

} // namespace jet
