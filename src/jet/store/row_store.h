#pragma once

#include "jet/file/pager.h"
#include "jet/format/data_page.h"
#include "jet/format/table_definition.h"

#include <optional>
#include <vector>

namespace jet
{

/// The bytes of a row; the page keeps them alive.
struct StoredRow {
    PageRef page;
    ByteView bytes;
};

/// The place right behind a row.
inline RowPointer behind(RowPointer row)
{
    if (row.row == 0xFF)
        return {row.page + 1, 0};
    return {row.page, static_cast<std::uint8_t>(row.row + 1)};
}

/// Rows of bytes on the data pages of one owner: a table, or a long-value column.
class RowStore
{
public:
    /// `owner` stands on every page; see data_page.h. `freeSpace` may be none.
    RowStore(Pager &pager, std::uint32_t owner, RowPointer ownedPages, RowPointer freeSpace)
        : m_pager(pager), m_owner(owner), m_owned(ownedPages), m_free(freeSpace)
    {
    }

    /// Throws Error(RecordDeleted) when the row is gone, Error(Damaged).
    StoredRow read(RowPointer row) const;
    /// The same for a place remembered from before: a page that has left the store since is no
    /// damage but Error(RecordDeleted).
    StoredRow readOwned(RowPointer row) const;
    /// True when a row, not only a deleted one, is there.
    bool contains(RowPointer row) const;
    RowPointer insert(ByteView bytes);
    /// Gives a row other bytes. The result is its place, a new one when it no longer fitted: rows
    /// that leave only a pointer behind are read, but not every other program reads them.
    [[nodiscard]] RowPointer replace(RowPointer row, ByteView bytes);
    /// Removes a row, and its page from the store when it was the last one there.
    void erase(RowPointer row);
    /// Removes all rows; the result are the pages no longer used, not yet released.
    [[nodiscard]] std::vector<PageNo> clear();

    /// The first row at or behind a place in storage order: pages ascending, rows in slot order.
    std::optional<RowPointer> next(RowPointer from) const;
    /// The last row at or before a place.
    std::optional<RowPointer> previous(RowPointer from) const;

    PageRef page(PageNo page) const;
    /// More rows than its pages can hold it cannot have.
    std::size_t capacity() const;

private:
    std::optional<RowPointer> insertInto(PageNo page, ByteView bytes);
    void dropImage(RowPointer row);
    void noticeFreed(PageNo page);

    Pager &m_pager;
    std::uint32_t m_owner;
    RowPointer m_owned;
    RowPointer m_free;
    PageNo m_filling =
        0; ///< the page that took the last row, while the maps have not changed since
};

} // namespace jet
