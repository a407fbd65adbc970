#include "jet/store/row_store.h"

#include "jet/store/usage_map.h"

#include <algorithm>

namespace jet
{
namespace
{

/// A moved row has one pointer to its image; no program writes longer chains.
constexpr int kMaxPointers = 4;

[[noreturn]] void throwDeleted(RowPointer row)
{
    throw Error(ErrorCode::RecordDeleted, "Record is deleted.", row.page);
}

} // namespace

PageRef RowStore::page(PageNo number) const
{
    PageRef content = m_pager.read(number);
    checkDataPage(*content, number, m_owner);
    return content;
}

StoredRow RowStore::read(RowPointer row) const
{
    for (int i = 0; i < kMaxPointers; ++i) {
        PageRef content = page(row.page);
        const Slot slot = slotAt(*content, row.page, row.row);
        if (slot.isDeleted())
            throwDeleted(row);
        const ByteView bytes = PageBytes(*content).subspan(slot.start, slot.length);
        if (!slot.isPointer())
            return {std::move(content), bytes};
        row = onPage(row.page, [&] { return readRowPointer(bytes, 0); });
    }
    throwDamaged("a row that was moved is nowhere to be found", row.page);
}

bool RowStore::contains(RowPointer row) const
{
    if (row.page >= m_pager.pageCount() || !UsageMap(m_pager, m_owned).contains(row.page))
        return false;
    const PageRef content = page(row.page);
    return row.row < slotCount(*content) && slotAt(*content, row.page, row.row).isRow();
}

StoredRow RowStore::readOwned(RowPointer row) const
{
    if (!contains(row))
        throwDeleted(row);
    return read(row);
}

/// nullopt when the row does not fit the page.
std::optional<RowPointer> RowStore::insertInto(PageNo number, ByteView bytes)
{
    page(number);
    const auto slot = insertRow(m_pager.edit(number), bytes);
    if (!slot)
        return std::nullopt;
    m_filling = number;
    return RowPointer{number, *slot};
}

RowPointer RowStore::insert(ByteView bytes)
{
    if (m_filling != 0) {
        if (const auto row = insertInto(m_filling, bytes))
            return *row;
        m_filling = 0;
    }
    UsageMap owned(m_pager, m_owned);
    if (!m_free.isNone()) {
        UsageMap free(m_pager, m_free);
        while (const auto candidate = free.next(0)) {
            // A page that the table does not own would be lost, or another table's.
            if (owned.contains(*candidate)) {
                if (const auto row = insertInto(*candidate, bytes))
                    return *row;
            }
            free.erase(*candidate);
        }
    }
    const PageNo fresh = PageAllocator(m_pager).allocate();
    PageBuffer &content = m_pager.edit(fresh);
    initDataPage(content, m_owner);
    const auto slot = insertRow(content, bytes);
    if (!slot)
        throw Error(ErrorCode::RecordTooLarge, "Record is too large.");
    owned.insert(fresh);
    if (!m_free.isNone())
        UsageMap(m_pager, m_free).insert(fresh);
    m_filling = fresh;
    return {fresh, *slot};
}

/// Removes the image of a moved row. Throws Error(RecordDeleted).
void RowStore::dropImage(RowPointer row)
{
    const PageRef content = page(row.page);
    const Slot slot = slotAt(*content, row.page, row.row);
    if (slot.isDeleted())
        throwDeleted(row);
    if (!slot.isPointer())
        return;
    const RowPointer image = readRowPointer(*content, slot.start);
    const PageRef target = page(image.page);
    if (image == row || !slotAt(*target, image.page, image.row).isMoved())
        throwDamaged("a row that was moved is nowhere to be found", row.page);
    deleteRow(m_pager.edit(image.page), image.page, image.row);
    // The page of the row itself is still needed, even when nothing else is on it.
    if (image.page != row.page)
        noticeFreed(image.page);
}

RowPointer RowStore::replace(RowPointer row, ByteView bytes)
{
    dropImage(row); // fails before anything is changed
    if (replaceRow(m_pager.edit(row.page), row.page, row.row, bytes))
        return row;
    const RowPointer moved = insert(bytes);
    deleteRow(m_pager.edit(row.page), row.page, row.row);
    noticeFreed(row.page);
    return moved;
}

void RowStore::erase(RowPointer row)
{
    dropImage(row);
    deleteRow(m_pager.edit(row.page), row.page, row.row);
    noticeFreed(row.page);
}

/// Reclaims the space of deleted rows.
void RowStore::noticeFreed(PageNo number)
{
    m_filling = 0; // the lowest page with room comes first
    const PageRef content = page(number);
    if (!isEmptyOfRows(*content, number)) {
        if (!m_free.isNone())
            UsageMap(m_pager, m_free).insert(number);
        return;
    }
    UsageMap(m_pager, m_owned).erase(number);
    if (!m_free.isNone())
        UsageMap(m_pager, m_free).erase(number);
    PageAllocator(m_pager).release(number);
}

std::vector<PageNo> RowStore::clear()
{
    m_filling = 0;
    UsageMap owned(m_pager, m_owned);
    std::vector<PageNo> unused = owned.pages();
    for (const PageNo number : unused) {
        // Their rows do not matter any more, but no page of somebody else may be given back.
        std::array<std::uint8_t, kOwnerEnd> start{};
        m_pager.readStart(number, start);
        checkOwner(start, number, m_owner);
    }
    const auto alsoUnused = [&](const std::vector<PageNo> &pages) {
        unused.insert(unused.end(), pages.begin(), pages.end());
    };
    alsoUnused(owned.clear());
    if (!m_free.isNone())
        alsoUnused(UsageMap(m_pager, m_free).clear());
    return unused;
}

std::size_t RowStore::capacity() const
{
    return UsageMap(m_pager, m_owned).size() * (kMaxSlots + 1);
}

std::optional<RowPointer> RowStore::next(RowPointer from) const
{
    const UsageMap owned(m_pager, m_owned);
    std::size_t slot = from.row;
    for (auto number = owned.next(from.page); number; number = owned.next(*number + 1)) {
        if (*number != from.page)
            slot = 0;
        const PageRef content = page(*number);
        for (const std::size_t count = slotCount(*content); slot < count; ++slot) {
            if (slotAt(*content, *number, slot).isRow())
                return RowPointer{*number, static_cast<std::uint8_t>(slot)};
        }
    }
    return std::nullopt;
}

std::optional<RowPointer> RowStore::previous(RowPointer from) const
{
    // Maps are searched upwards only, so the pages are collected once.
    const std::vector<PageNo> pages = UsageMap(m_pager, m_owned).pages();
    auto number = std::ranges::upper_bound(pages, from.page);
    while (number != pages.begin()) {
        --number;
        const PageRef content = page(*number);
        std::size_t slot = slotCount(*content);
        if (*number == from.page)
            slot = std::min<std::size_t>(slot, std::size_t{from.row} + 1);
        while (slot-- > 0) {
            if (slotAt(*content, *number, slot).isRow())
                return RowPointer{*number, static_cast<std::uint8_t>(slot)};
        }
    }
    return std::nullopt;
}

} // namespace jet
