#pragma once

#include "jet/format/long_value.h"
#include "jet/store/row_store.h"

namespace jet
{

/// The long values (Memo, OLE) of one column, stored outside the rows.
class LongValueStore
{
public:
    LongValueStore(Pager &pager, const LongValueMaps &maps)
        : m_pager(pager), m_rows(pager, kLongValueOwner, maps.ownedPages, maps.freeSpacePages)
    {
    }

    /// Throws Error(Damaged) when a part is missing or the lengths do not add up.
    Bytes read(const LongValueRef &reference) const;
    /// A reference of the size that the data will have; its row pointer is not yet set.
    static LongValueRef plan(ByteView data);
    /// Stores the data. Throws Error(ValueTooLong).
    LongValueRef write(ByteView data);
    void erase(const LongValueRef &reference);
    [[nodiscard]] std::vector<PageNo> clear() { return m_rows.clear(); }

private:
    Pager &m_pager;
    RowStore m_rows;
};

} // namespace jet
