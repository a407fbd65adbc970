#include "jet/format/data_page.h"

#include <algorithm>
#include <cstring>

namespace jet
{
namespace
{

constexpr std::size_t kFreeOffset = 2;
constexpr std::size_t kOwnerOffset = 4;
constexpr std::size_t kCountOffset = 12;
constexpr std::size_t kSlotSize = 2;
constexpr std::uint16_t kStartMask = 0x1FFF;

std::size_t slotOffset(std::size_t slot)
{
    return kDataPageHeader + kSlotSize * slot;
}

std::size_t startOf(PageBytes page, std::size_t slot)
{
    return readU16(page, slotOffset(slot)) & kStartMask;
}

/// Where the row of a slot ends: where that of the previous slot starts.
std::size_t endOf(PageBytes page, std::size_t slot)
{
    return slot == 0 ? kPageSize : startOf(page, slot - 1);
}

std::size_t lowestStart(PageBytes page)
{
    return endOf(page, slotCount(page));
}

void setFree(MutablePageBytes page)
{
    const PageBytes view(page);
    writeU16(page, kFreeOffset,
             static_cast<std::uint16_t>(lowestStart(view) - slotOffset(slotCount(view))));
}

void setSlot(MutablePageBytes page, std::size_t slot, std::size_t start, std::uint16_t flags)
{
    writeU16(page, slotOffset(slot), static_cast<std::uint16_t>(start | flags));
}

} // namespace

void initDataPage(MutablePageBytes page, std::uint32_t owner)
{
    std::ranges::fill(page, std::uint8_t{0});
    page[0] = static_cast<std::uint8_t>(PageType::Data);
    page[1] = 1;
    writeU32(page, kOwnerOffset, owner);
    setFree(page);
}

void checkOwner(ByteView start, PageNo pageNo, std::uint32_t owner)
{
    if (!hasType(start, PageType::Data) || readU32(start, kOwnerOffset) != owner)
        throwDamaged("page " + std::to_string(pageNo) + " does not hold the rows it should",
                     pageNo);
}

void checkDataPage(PageBytes page, PageNo pageNo, std::uint32_t owner)
{
    checkOwner(page, pageNo, owner);
    const std::size_t count = slotCount(page);
    if (count > kMaxSlots + 1 || lowestStart(page) < slotOffset(count))
        throwDamaged("the rows of page " + std::to_string(pageNo) + " overlap its slots", pageNo);
}

std::size_t slotCount(PageBytes page)
{
    return readU16(page, kCountOffset);
}

std::size_t freeBytes(PageBytes page)
{
    return readU16(page, kFreeOffset);
}

Slot slotAt(PageBytes page, PageNo pageNo, std::size_t slot)
{
    const std::size_t count = slotCount(page);
    if (slot >= count || slotOffset(count) > kPageSize)
        throwDamaged("page " + std::to_string(pageNo) + " has no row " + std::to_string(slot),
                     pageNo);
    const std::uint16_t entry = readU16(page, slotOffset(slot));
    const std::size_t start = entry & kStartMask;
    const std::size_t end = endOf(page, slot);
    if (start > end || end > kPageSize || start < slotOffset(count))
        throwDamaged("row " + std::to_string(slot) + " of page " + std::to_string(pageNo) +
                         " lies outside its page",
                     pageNo);
    return {start, end - start, static_cast<std::uint16_t>(entry & SlotFlag::Deleted)};
}

ByteView rowAt(PageBytes page, PageNo pageNo, std::size_t slot)
{
    const Slot place = slotAt(page, pageNo, slot);
    return page.subspan(place.start, place.length);
}

std::optional<std::uint8_t> insertRow(MutablePageBytes page, ByteView row)
{
    const PageBytes view(page);
    const std::size_t count = slotCount(view);
    const std::size_t lowest = lowestStart(view);
    if (count >= kMaxSlots || lowest > kPageSize || lowest < slotOffset(count + 1) + row.size())
        return std::nullopt;
    const std::size_t start = lowest - row.size();
    std::memcpy(page.data() + start, row.data(), row.size());
    writeU16(page, kCountOffset, static_cast<std::uint16_t>(count + 1));
    setSlot(page, count, start, 0);
    setFree(page);
    return static_cast<std::uint8_t>(count);
}

bool replaceRow(MutablePageBytes page, PageNo pageNo, std::size_t slot, ByteView row,
                std::uint16_t flags)
{
    const PageBytes view(page);
    const Slot old = slotAt(view, pageNo, slot);
    const std::size_t count = slotCount(view);
    const std::size_t lowest = lowestStart(view);
    if (lowest > old.start || lowest < slotOffset(count))
        throwDamaged("the rows of page " + std::to_string(pageNo) + " are out of order", pageNo);
    if (row.size() > old.length + (lowest - slotOffset(count)))
        return false;

    // Copied first: the caller's bytes may lie on this very page.
    const Bytes bytes(row.begin(), row.end());
    const std::size_t newStart = old.start + old.length - bytes.size();
    const std::size_t shifted = lowest + old.length - bytes.size();
    std::memmove(page.data() + shifted, page.data() + lowest, old.start - lowest);
    std::ranges::copy(bytes, page.begin() + static_cast<std::ptrdiff_t>(newStart));
    for (std::size_t later = slot + 1; later < count; ++later) {
        const std::uint16_t entry = readU16(view, slotOffset(later));
        const std::size_t start = (entry & kStartMask) + old.length - bytes.size();
        setSlot(page, later, start, static_cast<std::uint16_t>(entry & SlotFlag::Deleted));
    }
    setSlot(page, slot, newStart, flags);
    setFree(page);
    return true;
}

void deleteRow(MutablePageBytes page, PageNo pageNo, std::size_t slot)
{
    // An empty row always fits.
    static_cast<void>(replaceRow(page, pageNo, slot, {}, SlotFlag::Deleted));
}

bool isEmptyOfRows(PageBytes page, PageNo pageNo)
{
    // Rows are mostly deleted in order, so the last one is the one most likely left.
    for (std::size_t slot = slotCount(page); slot-- > 0;) {
        const Slot place = slotAt(page, pageNo, slot);
        if (!place.isDeleted() && !(place.isMoved() && place.length == 0))
            return false;
    }
    return true;
}

} // namespace jet
