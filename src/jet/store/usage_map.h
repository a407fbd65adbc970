#pragma once

#include "jet/file/pager.h"
#include "jet/format/data_page.h"

#include <optional>
#include <span>
#include <vector>

namespace jet
{

// A usage map is a set of pages, kept as one row of a page of the data form; first byte = kind:
//   0 inline:    u32 first page, then a bitmap; bit k (lowest bit of a byte first) = first page + k
//   1 reference: u32 page numbers of bitmap pages, 0 = none yet; entry i covers the 32736 pages
//                from i * 32736 on
// Bitmap page: 05 01 00 00, then 4092 bytes of bitmap.

/// Length of the row of a new map; its reference form covers the largest file.
inline constexpr std::size_t kUsageMapRow = 69;
inline constexpr PageNo kPagesPerBitmap = (kPageSize - 4) * 8;

/// Row of a new inline map that holds one page, or none when `page` is 0.
Bytes makeUsageMapRow(PageNo page);

/// Allocates and releases pages; page 1 holds the map of the free ones. Pages 0 to 5 are never
/// allocated.
class PageAllocator
{
public:
    explicit PageAllocator(Pager &pager) : m_pager(pager) {}

    /// Allocates a free page, or a new one at the end of the file. Its content is undefined.
    PageNo allocate();
    void release(std::span<const PageNo> pages);
    void release(PageNo page) { release(std::span(&page, 1)); }

    /// A page after the map's range counts as free, one before it as used: programs that move its
    /// start move it past the pages in use.
    bool isFree(PageNo page);
    /// The pages that hold the map itself, besides page 1.
    std::vector<PageNo> bitmapPages();

private:
    void setFree(PageNo page, bool free);
    void cover(PageNo page);
    void growBitmap(PageNo page);
    void turnIntoReference();
    PageNo makeBitmap();

    Pager &m_pager;
};

/// The map of a table, an index or a long-value column.
class UsageMap
{
public:
    UsageMap(Pager &pager, RowPointer place) : m_pager(pager), m_place(place) {}

    bool contains(PageNo page) const;
    /// The lowest member not below a page. Throws Error(Damaged) for one beyond the end of the
    /// file.
    std::optional<PageNo> next(PageNo from) const;
    std::vector<PageNo> pages() const;
    std::size_t size() const;
    std::vector<PageNo> bitmapPages() const;

    void insert(PageNo page);
    void erase(PageNo page);
    /// Empties the set. Returns the bitmap pages no longer needed, not yet released.
    [[nodiscard]] std::vector<PageNo> clear();

private:
    PageRef rowPage() const;
    void turnIntoReference();

    Pager &m_pager;
    RowPointer m_place;
};

} // namespace jet
