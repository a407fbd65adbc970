#include "jet/store/index_cursor.h"

#include <algorithm>

namespace jet
{

RowPointer IndexCursor::row() const
{
    return readRowId(m_entry, m_entry.size() - kRowIdSize);
}

bool IndexCursor::hasKey(ByteView key) const
{
    return m_entry.size() == key.size() + kRowIdSize &&
           std::equal(key.begin(), key.end(), m_entry.begin());
}

void IndexCursor::load(PageNo page)
{
    m_leaf.emplace(m_tree.page(page));
    if (!m_leaf->isLeaf())
        throwDamaged("page " + std::to_string(page) + " of an index is no leaf", page);
    m_version = m_tree.pager().version();
}

bool IndexCursor::moveToEdge(bool last)
{
    load(m_tree.edgeLeaf(last));
    m_index = last ? m_leaf->count() - 1 : 0;
    return settle(!last);
}

bool IndexCursor::seek(ByteView entry)
{
    load(m_tree.leafFor(entry));
    m_index = m_leaf->lowerBound(entry);
    return settle(true);
}

bool IndexCursor::step(bool forward)
{
    if (!m_valid)
        return false;
    std::size_t distance = forward ? 1 : static_cast<std::size_t>(-1);
    if (m_version != m_tree.pager().version()) {
        load(m_tree.leafFor(m_entry));
        m_index = m_leaf->lowerBound(m_entry);
        // If the entry is gone, the position already is that of the following one.
        const bool gone = m_index == m_leaf->count() || m_leaf->entry(m_index) != m_entry;
        if (forward && gone)
            distance = 0;
    }
    m_index += distance;
    m_before.swap(m_entry);
    if (!settle(forward))
        return false;
    // Ends a circular chain of leaves in a damaged file.
    if (forward ? m_entry <= m_before : m_entry >= m_before)
        throwDamaged("the entries of an index are out of order");
    return true;
}

/// Moves to the next leaf with an entry when the position is outside its leaf.
bool IndexCursor::settle(bool forward)
{
    PageNo steps = 0;
    while (m_index >= m_leaf->count()) {
        const PageNo next = forward ? m_leaf->links().next : m_leaf->links().previous;
        m_valid = next != 0;
        if (!m_valid)
            return false;
        if (++steps > m_tree.pager().pageCount())
            throwDamaged("the leaves of an index lead in a circle at page " + std::to_string(next),
                         next);
        load(next);
        m_index = forward ? 0 : m_leaf->count() - 1;
    }
    m_leaf->copyEntry(m_index, m_entry);
    m_valid = true;
    return true;
}

} // namespace jet
