#include "jet/store/usage_map.h"

#include "jet/format/bitmap.h"
#include "jet/format/header_page.h"

#include <algorithm>

namespace jet
{
namespace
{

constexpr std::uint8_t kInline = 0;
constexpr std::uint8_t kReference = 1;
constexpr std::size_t kInlineHeader = 5;
constexpr std::size_t kReferenceHeader = 1;
constexpr std::size_t kBitmapHeader = 4;
constexpr RowPointer kGlobalMap{kGlobalMapPage, 0};
constexpr std::uint32_t kGlobalMapOwner = 1;
/// The global map grows in steps of this many bytes: 512 pages.
constexpr std::size_t kGrowthStep = 64;

/// The row of a map: what both kinds have in common.
struct MapRow {
    Slot place;
    ByteView bytes;

    bool isInline() const { return bytes[0] == kInline; }
    PageNo start() const { return readU32(bytes, 1); }
    ByteView bits() const { return bytes.subspan(kInlineHeader); }
    std::size_t references() const { return (bytes.size() - kReferenceHeader) / 4; }
    PageNo reference(std::size_t index) const
    {
        return readU32(bytes, kReferenceHeader + 4 * index);
    }
    bool covers(PageNo page) const { return page >= start() && page - start() < bits().size() * 8; }
    bool holds(PageNo page) const { return covers(page) && testBit(bits(), page - start()); }
    /// The same of the map of free pages, where those behind it are free.
    bool holdsFree(PageNo page) const
    {
        return page >= start() && (!covers(page) || testBit(bits(), page - start()));
    }
};

MapRow mapRow(PageBytes page, RowPointer place)
{
    MapRow row{slotAt(page, place.page, place.row), rowAt(page, place.page, place.row)};
    const std::size_t least =
        row.bytes.empty() || row.isInline() ? kInlineHeader : kReferenceHeader;
    if (row.bytes.size() < least || row.bytes[0] > kReference)
        throwDamaged("page " + std::to_string(place.page) + " holds no usage map in row " +
                         std::to_string(place.row),
                     place.page);
    return row;
}

MutableBytes inlineBits(Pager &pager, RowPointer place, const MapRow &row)
{
    return MutableBytes(pager.edit(place.page))
        .subspan(row.place.start + kInlineHeader, row.place.length - kInlineHeader);
}

PageRef readBitmap(Pager &pager, PageNo page)
{
    PageRef bitmap = pager.read(page);
    if (!hasType(*bitmap, PageType::UsageBitmap))
        throwDamaged("page " + std::to_string(page) + " is no bitmap of a usage map", page);
    return bitmap;
}

ByteView bitsOf(PageBytes bitmap)
{
    return bitmap.subspan(kBitmapHeader);
}

void initBitmap(PageBuffer &page, std::uint8_t bits)
{
    page.fill(bits);
    page[0] = static_cast<std::uint8_t>(PageType::UsageBitmap);
    page[1] = 1;
    page[2] = page[3] = 0;
}

void setReference(Pager &pager, RowPointer place, const MapRow &row, std::size_t index, PageNo page)
{
    writeU32(pager.edit(place.page), row.place.start + kReferenceHeader + 4 * index, page);
}

std::vector<PageNo> references(const MapRow &row)
{
    std::vector<PageNo> pages;
    if (row.isInline())
        return pages;
    for (std::size_t i = 0; i < row.references(); ++i) {
        if (row.reference(i) != 0)
            pages.push_back(row.reference(i));
    }
    return pages;
}

} // namespace

Bytes makeUsageMapRow(PageNo page)
{
    Bytes row(kUsageMapRow, 0);
    // A page behind the range of a map that starts at 0 needs a later start.
    const PageNo range = (kUsageMapRow - kInlineHeader) * 8;
    const PageNo start = page < range ? 0 : page / 8 * 8;
    writeU32(row, 1, start);
    if (page != 0)
        putBit(MutableBytes(row).subspan(kInlineHeader), page - start, true);
    return row;
}

PageNo PageAllocator::allocate()
{
    const PageRef page = m_pager.read(kGlobalMapPage);
    checkDataPage(*page, kGlobalMapPage, kGlobalMapOwner);
    const MapRow row = mapRow(*page, kGlobalMap);
    std::optional<PageNo> found;
    const auto search = [&](ByteView bits, PageNo start) {
        const PageNo from = std::max(start, kFirstAllocatablePage) - start;
        const auto bit = firstBit(bits, from);
        if (bit && start + *bit < m_pager.pageCount())
            found = static_cast<PageNo>(start + *bit);
    };
    if (row.isInline()) {
        search(row.bits(), row.start());
    } else {
        for (std::size_t i = 0; i < row.references() && !found; ++i) {
            if (row.reference(i) != 0) {
                const PageRef bitmap = readBitmap(m_pager, row.reference(i));
                search(bitsOf(*bitmap), static_cast<PageNo>(i) * kPagesPerBitmap);
            }
        }
    }
    if (!found)
        found = m_pager.extend();
    setFree(*found, false);
    return *found;
}

void PageAllocator::release(std::span<const PageNo> pages)
{
    for (const PageNo page : pages) {
        if (page < kFirstAllocatablePage || page >= m_pager.pageCount())
            throwDamaged("page " + std::to_string(page) + " cannot be given back", page);
        setFree(page, true);
        m_pager.disregard(page);
    }
}

bool PageAllocator::isFree(PageNo page)
{
    const PageRef mapPage = m_pager.read(kGlobalMapPage);
    const MapRow row = mapRow(*mapPage, kGlobalMap);
    if (row.isInline())
        return row.holdsFree(page);
    const std::size_t index = page / kPagesPerBitmap;
    if (index >= row.references() || row.reference(index) == 0)
        return true;
    return testBit(bitsOf(*readBitmap(m_pager, row.reference(index))), page % kPagesPerBitmap);
}

std::vector<PageNo> PageAllocator::bitmapPages()
{
    const PageRef page = m_pager.read(kGlobalMapPage);
    return references(mapRow(*page, kGlobalMap));
}

void PageAllocator::setFree(PageNo page, bool free)
{
    if (isFree(page) == free)
        return;
    cover(page);
    const PageRef mapPage = m_pager.read(kGlobalMapPage);
    const MapRow row = mapRow(*mapPage, kGlobalMap);
    if (row.isInline()) {
        putBit(inlineBits(m_pager, kGlobalMap, row), page - row.start(), free);
        return;
    }
    const PageNo bitmap = row.reference(page / kPagesPerBitmap);
    readBitmap(m_pager, bitmap);
    putBit(MutableBytes(m_pager.edit(bitmap)).subspan(kBitmapHeader), page % kPagesPerBitmap, free);
}

/// Extends the map to cover a page.
void PageAllocator::cover(PageNo page)
{
    {
        const PageRef mapPage = m_pager.read(kGlobalMapPage);
        const MapRow row = mapRow(*mapPage, kGlobalMap);
        if (row.isInline() && row.covers(page))
            return;
        if (row.isInline() && row.start() == 0) {
            const std::size_t needed = kInlineHeader + page / 8 + 1;
            const std::size_t steps = (needed - row.bytes.size() + kGrowthStep - 1) / kGrowthStep;
            Bytes longer(row.bytes.begin(), row.bytes.end());
            longer.resize(longer.size() + steps * kGrowthStep, 0xFF);
            if (longer.size() <= kPageSize &&
                replaceRow(m_pager.edit(kGlobalMapPage), kGlobalMapPage, kGlobalMap.row, longer))
                return;
        }
    }
    growBitmap(page);
}

void PageAllocator::growBitmap(PageNo page)
{
    turnIntoReference();
    const std::size_t index = page / kPagesPerBitmap;
    const PageRef mapPage = m_pager.read(kGlobalMapPage);
    const MapRow row = mapRow(*mapPage, kGlobalMap);
    if (index >= row.references())
        throw Error(ErrorCode::DiskFull, "The database has reached its largest size.");
    if (row.reference(index) != 0)
        return;
    const PageNo bitmap = makeBitmap();
    setReference(m_pager, kGlobalMap, row, index, bitmap);
    setFree(bitmap, false);
}

void PageAllocator::turnIntoReference()
{
    const PageRef mapPage = m_pager.read(kGlobalMapPage);
    const MapRow row = mapRow(*mapPage, kGlobalMap);
    if (!row.isInline())
        return;
    Bytes references(kUsageMapRow, 0);
    references[0] = kReference;
    std::vector<PageNo> bitmaps;
    const PageNo pages = m_pager.pageCount();
    for (PageNo first = 0; first < pages; first += kPagesPerBitmap) {
        const PageNo bitmap = makeBitmap();
        const MutableBytes bits = MutableBytes(m_pager.edit(bitmap)).subspan(kBitmapHeader);
        for (PageNo page = first; page < std::min(pages, first + kPagesPerBitmap); ++page)
            putBit(bits, page - first, row.holdsFree(page));
        writeU32(references, kReferenceHeader + 4 * bitmaps.size(), bitmap);
        bitmaps.push_back(bitmap);
    }
    if (!replaceRow(m_pager.edit(kGlobalMapPage), kGlobalMapPage, kGlobalMap.row, references))
        throwDamaged("the map of free pages has no room on its page", kGlobalMapPage);
    for (const PageNo bitmap : bitmaps)
        setFree(bitmap, false);
}

PageNo PageAllocator::makeBitmap()
{
    const PageNo page = m_pager.extend();
    initBitmap(m_pager.edit(page), 0xFF);
    return page;
}

PageRef UsageMap::rowPage() const
{
    return m_pager.read(m_place.page);
}

bool UsageMap::contains(PageNo page) const
{
    const PageRef owner = rowPage();
    const MapRow row = mapRow(*owner, m_place);
    if (row.isInline())
        return row.holds(page);
    const std::size_t index = page / kPagesPerBitmap;
    return index < row.references() && row.reference(index) != 0 &&
           testBit(bitsOf(*readBitmap(m_pager, row.reference(index))), page % kPagesPerBitmap);
}

std::optional<PageNo> UsageMap::next(PageNo from) const
{
    const PageRef owner = rowPage();
    const MapRow row = mapRow(*owner, m_place);
    std::optional<std::uint64_t> found;
    if (row.isInline()) {
        const PageNo start = row.start();
        const auto bit = firstBit(row.bits(), from > start ? from - start : 0);
        if (bit)
            found = std::uint64_t{start} + *bit;
    } else {
        for (std::size_t i = from / kPagesPerBitmap; i < row.references() && !found; ++i) {
            if (row.reference(i) == 0)
                continue;
            const PageRef bitmap = readBitmap(m_pager, row.reference(i));
            const std::uint64_t start = std::uint64_t{i} * kPagesPerBitmap;
            const auto bit = firstBit(bitsOf(*bitmap),
                                      from > start ? static_cast<std::size_t>(from - start) : 0);
            if (bit)
                found = start + *bit;
        }
    }
    if (!found)
        return std::nullopt;
    if (*found >= m_pager.pageCount())
        throwDamaged("a usage map names page " + std::to_string(*found) +
                         " behind the end of the file",
                     m_place.page);
    return static_cast<PageNo>(*found);
}

std::vector<PageNo> UsageMap::pages() const
{
    std::vector<PageNo> all;
    for (auto page = next(0); page; page = next(*page + 1))
        all.push_back(*page);
    return all;
}

std::size_t UsageMap::size() const
{
    const PageRef owner = rowPage();
    const MapRow row = mapRow(*owner, m_place);
    if (row.isInline())
        return countBits(row.bits());
    std::size_t count = 0;
    for (const PageNo bitmap : references(row))
        count += countBits(bitsOf(*readBitmap(m_pager, bitmap)));
    return count;
}

std::vector<PageNo> UsageMap::bitmapPages() const
{
    const PageRef owner = rowPage();
    return references(mapRow(*owner, m_place));
}

void UsageMap::insert(PageNo page)
{
    if (contains(page))
        return; // most such pages are in the map already
    const PageRef owner = rowPage();
    const MapRow row = mapRow(*owner, m_place);
    if (row.isInline()) {
        if (row.covers(page)) {
            putBit(inlineBits(m_pager, m_place, row), page - row.start(), true);
            return;
        }
        turnIntoReference();
        insert(page);
        return;
    }
    const std::size_t index = page / kPagesPerBitmap;
    if (index >= row.references())
        throwDamaged("a usage map is too short for page " + std::to_string(page), m_place.page);
    PageNo bitmap = row.reference(index);
    if (bitmap == 0) {
        bitmap = PageAllocator(m_pager).allocate();
        initBitmap(m_pager.edit(bitmap), 0);
        setReference(m_pager, m_place, row, index, bitmap);
    }
    putBit(MutableBytes(m_pager.edit(bitmap)).subspan(kBitmapHeader), page % kPagesPerBitmap, true);
}

void UsageMap::turnIntoReference()
{
    const std::vector<PageNo> members = pages();
    const PageRef owner = rowPage();
    const MapRow row = mapRow(*owner, m_place);
    const MutableBytes bytes =
        MutableBytes(m_pager.edit(m_place.page)).subspan(row.place.start, row.place.length);
    std::ranges::fill(bytes, std::uint8_t{0});
    bytes[0] = kReference;
    for (const PageNo page : members)
        insert(page);
}

void UsageMap::erase(PageNo page)
{
    if (!contains(page))
        return;
    const PageRef owner = rowPage();
    const MapRow row = mapRow(*owner, m_place);
    if (row.isInline()) {
        putBit(inlineBits(m_pager, m_place, row), page - row.start(), false);
        return;
    }
    const PageNo bitmap = row.reference(page / kPagesPerBitmap);
    putBit(MutableBytes(m_pager.edit(bitmap)).subspan(kBitmapHeader), page % kPagesPerBitmap,
           false);
}

std::vector<PageNo> UsageMap::clear()
{
    std::vector<PageNo> unused = bitmapPages();
    const PageRef owner = rowPage();
    const Slot place = mapRow(*owner, m_place).place;
    const MutableBytes bytes =
        MutableBytes(m_pager.edit(m_place.page)).subspan(place.start, place.length);
    std::ranges::fill(bytes, std::uint8_t{0});
    return unused;
}

} // namespace jet
