#pragma once

#include "jet/file/pager.h"
#include "jet/format/data_page.h"
#include "jet/format/table_definition.h"

#include <optional>
#include <vector>

namespace jet
{

/// The bytes of a row; `page` keeps them alive.
struct StoredRow {
    PageRef page;
    ByteView bytes;
};

/// The row pointer after a row.
inline RowPointer behind(RowPointer row)
{
    if (row.row == 0xFF)
        return {row.page + 1, 0};
    return {row.page, static_cast<std::uint8_t>(row.row + 1)};
}

/// The rows on the data pages of one owner: a table, or a long-value column.
class RowStore
{
public:
    /// `owner` is stored on every page, see data_page.h. `freeSpace` may be none.
    RowStore(Pager &pager, std::uint32_t owner, RowPointer ownedPages, RowPointer freeSpace)
        : m_pager(pager), m_owner(owner), m_owned(ownedPages), m_free(freeSpace)
    {
    }

    /// Throws Error(RecordDeleted), Error(Damaged).
    StoredRow read(RowPointer row) const;
    /// The same for an older row pointer: a page released since is Error(RecordDeleted), not
    /// damage.
    StoredRow readOwned(RowPointer row) const;
    /// True when the row exists and is not deleted.
    bool contains(RowPointer row) const;
    RowPointer insert(ByteView bytes);
    /// Replaces a row's bytes. Returns its row pointer, a new one when the page lacks room: moved
    /// rows with a pointer in the old slot are read, but not written, as not every program reads
    /// them.
    [[nodiscard]] RowPointer replace(RowPointer row, ByteView bytes);
    /// Removes a row, and releases its page when it was the last one there.
    void erase(RowPointer row);
    /// Removes all rows. Returns the unused pages, not yet released.
    [[nodiscard]] std::vector<PageNo> clear();

    /// The first row at or after a row pointer in storage order: pages ascending, rows in slot
    /// order.
    std::optional<RowPointer> next(RowPointer from) const;
    /// The last row at or before a row pointer.
    std::optional<RowPointer> previous(RowPointer from) const;

    PageRef page(PageNo page) const;
    /// The most rows that its pages can hold.
    std::size_t capacity() const;

private:
    std::optional<RowPointer> insertInto(PageNo page, ByteView bytes);
    void dropImage(RowPointer row);
    void noticeFreed(PageNo page);

    Pager &m_pager;
    std::uint32_t m_owner;
    RowPointer m_owned;
    RowPointer m_free;
    PageNo m_filling = 0; ///< the page that took the last row, until the maps change
};

} // namespace jet
