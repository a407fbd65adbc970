#include "jet/cursor.h"

#include "jet/store/assignment.h"
#include "jet/store/row_walk.h"
#include "jet/store/session.h"

#include <utility>

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
        // A cursor's place is void in another table, even one of the same name.
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
    return m_movedTo.value_or(m_walk->row());
}

StoredRow Cursor::storedRow(const TableStore &table) const
{
    const RowPointer row = current();
    return m_movedTo ? table.rows().readOwned(row) : m_walk->stored(table);
}

void Cursor::beginPass(bool forward)
{
    m_moved.clear();
    m_forward = forward;
}

void Cursor::arrive(bool found, Place otherwise)
{
    m_movedTo.reset();
    m_place = found ? Place::On : otherwise;
    m_arrival = m_session->pager().version();
}

bool Cursor::first()
{
    return m_session->readOnce([&] {
        beginPass(true);
        arrive(m_walk->first(store()), Place::After);
        return hasCurrent();
    });
}

bool Cursor::last()
{
    return m_session->readOnce([&] {
        beginPass(false);
        arrive(m_walk->last(store()), Place::Before);
        return hasCurrent();
    });
}

bool Cursor::next()
{
    if (m_place == Place::Before)
        return first();
    return m_place == Place::On && (stepUnchanged() || step(true));
}

/// Moves forward while nothing has changed, without a lock where the pages are in memory; false
/// when that does not lead to the next record.
bool Cursor::stepUnchanged()
{
    if (!m_forward || !m_moved.empty() || m_movedTo || !m_store || !m_session->isUnchanged() ||
        m_structure != m_session->structure())
        return false;
    try {
        const Pager::Glance glance(m_session->pager());
        if (!m_walk->tryNext(*m_store))
            return false;
    } catch (const Pager::Overtaken &) {
        return false;
    }
    arrive(true, Place::After);
    return true;
}

bool Cursor::previous()
{
    if (m_place == Place::After)
        return last();
    return m_place == Place::On && step(false);
}

bool Cursor::step(bool forward)
{
    return m_session->readOnce([&] {
        const TableStore &table = store();
        if (forward != m_forward) {
            const RowPointer row = current();
            const bool wasMoved = m_moved.contains(row);
            beginPass(forward);
            if (wasMoved)
                m_moved.insert(row);
        }
        bool found = false;
        do
            found = forward ? m_walk->next(table) : m_walk->previous(table);
        while (found && m_moved.contains(m_walk->row()));
        arrive(found, forward ? Place::After : Place::Before);
        return found;
    });
}

bool Cursor::seek(std::span<const Value> key)
{
    return m_session->readOnce([&] {
        const bool found = m_walk->seek(store(), key);
        beginPass(true);
        arrive(found, Place::After);
        return found;
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
        const StoredRow stored = storedRow(table);
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
    const bool hasJustArrived =
        std::exchange(m_arrival, 0) == m_session->pager().version() || m_session->isUnchanged();
    m_session->readWhen(hasJustArrived, [&] {
        const TableStore &table = store();
        const PageNo page = current().page;
        table.decode(storedRow(table), page, row);
    });
}

void Cursor::update(const Assignments &assignments)
{
    m_session->write([&] {
        TableStore &table = store();
        requireUserTable(table);
        const RowPointer row = current();
        Row values = table.read(row);
        std::vector<bool> changed(values.size(), false);
        assign(table, assignments, values, &changed);
        const RowPointer place = table.update(row, values, changed);
        if (place != row) {
            m_walk->moved(place);
            m_movedTo = place;
        }
        if (place != row || m_walk->isOrderedBy(table, changed))
            m_moved.insert(place);
    });
}

void Cursor::erase()
{
    m_session->write([&] {
        TableStore &table = store();
        requireUserTable(table);
        const RowPointer row = current();
        table.erase(row);
        m_moved.erase(row); // a new record may take its place
    });
}

} // namespace jet
