#pragma once

#include "jet/format/page.h"

#include <optional>

namespace jet
{

// Data page; offsets from the page start:
//   0 u8 1 | 1 u8 1 | 2 u16 free bytes | 4 u32 definition page of the owning table | 8 u32 0 |
//  12 u16 slot count n, deleted rows included | 14 u16 slot[n]: flags and start of the row
// Rows fill the page from its end downwards in slot order: row i lies in [start(i), start(i - 1)).
// Page and slot identify a row, so a slot never moves. Usage maps and long values are stored on
// pages of the same layout.

inline constexpr std::size_t kDataPageHeader = 14;
/// A row pointer has one byte for the slot.
inline constexpr std::size_t kMaxSlots = 255;
/// Owner field of a long-value page.
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C; // "LVAL"
/// Owner field of a page of usage maps.
inline constexpr std::uint32_t kUsageMapOwner = 0;

namespace SlotFlag
{
inline constexpr std::uint16_t Moved = 0x8000;   ///< skipped by scans: a row's image moved here
inline constexpr std::uint16_t Pointer = 0x4000; ///< the slot holds a pointer to the image
inline constexpr std::uint16_t Deleted = 0xC000;
} // namespace SlotFlag

struct Slot {
    std::size_t start = 0;
    std::size_t length = 0;
    std::uint16_t flags = 0;

    bool isDeleted() const { return (flags & SlotFlag::Deleted) == SlotFlag::Deleted; }
    bool isPointer() const { return (flags & SlotFlag::Deleted) == SlotFlag::Pointer; }
    bool isMoved() const { return (flags & SlotFlag::Deleted) == SlotFlag::Moved; }
    /// A scan of the table's pages stops here.
    bool isRow() const { return (flags & SlotFlag::Moved) == 0; }
};

void initDataPage(MutablePageBytes page, std::uint32_t owner);

/// The bytes of a page that checkOwner() needs.
inline constexpr std::size_t kOwnerEnd = 8;
/// Throws Error(Damaged) when a page that starts like this is not a data page of this owner.
void checkOwner(ByteView start, PageNo pageNo, std::uint32_t owner);
/// The same, and when its slots overlap.
void checkDataPage(PageBytes page, PageNo pageNo, std::uint32_t owner);

std::size_t slotCount(PageBytes page);
std::size_t freeBytes(PageBytes page);

/// Throws Error(Damaged) when there is no such slot or its bounds lie outside the page.
Slot slotAt(PageBytes page, PageNo pageNo, std::size_t slot);
/// Bytes of a slot, valid until the page is changed. Throws as slotAt() does.
ByteView rowAt(PageBytes page, PageNo pageNo, std::size_t slot);

/// Adds a row; nullopt when it does not fit.
std::optional<std::uint8_t> insertRow(MutablePageBytes page, ByteView row);

/// Replaces a slot's bytes and flags and moves the rows below it; false when they do not fit.
[[nodiscard]] bool replaceRow(MutablePageBytes page, PageNo pageNo, std::size_t slot, ByteView row,
                              std::uint16_t flags = 0);

/// Removes a row's bytes; its slot stays and is marked as deleted.
void deleteRow(MutablePageBytes page, PageNo pageNo, std::size_t slot);

/// True when every slot is deleted, so that the page can be released.
bool isEmptyOfRows(PageBytes page, PageNo pageNo);

} // namespace jet
