#include "jet/cursor.h"

#include "jet/assignment.h"
#include "jet/row_walk.h"
#include "jet/session.h"

namespace jet
{

Cursor::Cursor(std::shared_ptr<Session> session, Text table, std::unique_ptr<RowWalk> walk)
    : m_session(std::move(session)), m_table(std::move(table)), m_walk(std::move(walk))
{
}

Cursor::Cursor(Cursor &&) noexcept = default;
Cursor &Cursor::operator=(Cursor &&) noexcept = default;
Cursor::~Cursor() = default;

TableStore &Cursor::store() const
{
    if (!m_store || m_structure != m_session->structure()) {
        auto found = m_session->table(m_table);
        // The place of a cursor means nothing in another table, even one of the same name.
        if (m_store && found->page() != m_store->page())
            throw Error(ErrorCode::RecordDeleted, "The table of the records was replaced.");
        m_store = std::move(found);
        m_structure = m_session->structure();
    }
    return *m_store;
}

RowPointer Cursor::current() const
{
    if (m_place != Place::On)
        throw Error(ErrorCode::NoCurrentRecord, "No current record.");
    return m_walk->row();
}

bool Cursor::first()
{
    return m_session->read([&] {
        m_place = m_walk->first(store()) ? Place::On : Place::After;
        return hasCurrent();
    });
}

bool Cursor::last()
{
    return m_session->read([&] {
        m_place = m_walk->last(store()) ? Place::On : Place::Before;
        return hasCurrent();
    });
}

bool Cursor::next()
{
    if (m_place == Place::Before)
        return first();
    if (m_place == Place::After)
        return false;
    return m_session->read([&] {
        const TableStore &table = store();
        bool found = m_walk->next(table);
        while (found && m_moved.contains(m_walk->row()))
            found = m_walk->next(table);
        m_place = found ? Place::On : Place::After;
        return found;
    });
}

bool Cursor::previous()
{
    if (m_place == Place::After)
        return last();
    if (m_place == Place::Before)
        return false;
    return m_session->read([&] {
        m_place = m_walk->previous(store()) ? Place::On : Place::Before;
        return hasCurrent();
    });
}

bool Cursor::seek(std::span<const Value> key)
{
    return m_session->read([&] {
        m_place = m_walk->seek(store(), key) ? Place::On : Place::After;
        return hasCurrent();
    });
}

RowPointer Cursor::bookmark() const
{
    return current();
}

Value Cursor::value(std::size_t column) const
{
    return m_session->read([&] {
        const TableStore &table = store();
        if (column >= table.definition().columns.size())
            throw Error(ErrorCode::NoSuchItem, "Item not found in this collection.");
        current();
        const StoredRow stored = m_walk->stored(table);
        return table.readValue(RowView(stored.bytes, table.layout()), column);
    });
}

Value Cursor::value(std::u16string_view column) const
{
    return m_session->read([&] { return value(columnPlace(store(), column)); });
}

Row Cursor::row() const
{
    Row row;
    read(row);
    return row;
}

void Cursor::read(Row &row) const
{
    m_session->read([&] {
        const TableStore &table = store();
        const PageNo page = current().page;
        table.decode(m_walk->stored(table), page, row);
    });
}

void Cursor::update(const Assignments &assignments)
{
    m_session->write([&] {
        TableStore &table = store();
        const RowPointer row = current();
        Row values = table.read(row);
        std::vector<bool> changed(values.size(), false);
        assign(table, assignments, values, &changed);
        const RowPointer place = table.update(row, values, changed);
        if (place == row)
            return;
        m_moved.insert(place);
        m_walk->moved(table, place);
    });
}

void Cursor::erase()
{
    m_session->write([&] { store().erase(current()); });
}

} // namespace jet
