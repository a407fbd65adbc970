#include "jet/index_page.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace jet
{
namespace
{

constexpr std::size_t kFreeOffset = 2;
constexpr std::size_t kOwnerOffset = 4;
constexpr std::size_t kPreviousOffset = 12;
constexpr std::size_t kNextOffset = 16;
constexpr std::size_t kTailOffset = 20;
constexpr std::size_t kPrefixOffset = 24;
constexpr std::size_t kLevelOffset = 26;
constexpr std::size_t kBitmapOffset = 27;
constexpr std::size_t kBitmapSize = kEntryArea - kBitmapOffset;

std::strong_ordering compareBytes(ByteView left, ByteView right)
{
    const std::size_t common = std::min(left.size(), right.size());
    const int order = common == 0 ? 0 : std::memcmp(left.data(), right.data(), common);
    if (order != 0)
        return order <=> 0;
    return left.size() <=> right.size();
}

void markEnd(MutablePageBytes page, std::size_t end)
{
    page[kBitmapOffset + end / 8] =
        static_cast<std::uint8_t>(page[kBitmapOffset + end / 8] | 1U << (end % 8));
}

void setFree(MutablePageBytes page, std::size_t used)
{
    writeU16(page, kFreeOffset, static_cast<std::uint16_t>(kEntryAreaSize - used));
}

void initPage(MutablePageBytes page, PageType type, PageNo owner, IndexLinks links)
{
    std::ranges::fill(page, std::uint8_t{0});
    page[0] = static_cast<std::uint8_t>(type);
    page[1] = 1;
    writeU32(page, kOwnerOffset, owner);
    setLinks(page, links);
}

std::size_t append(MutablePageBytes page, std::size_t used, ByteView bytes)
{
    writeBytes(page, kEntryArea + used, bytes);
    return used + bytes.size();
}

/// Marks the ends anew: those from `index` on moved by `shift`, others as they were.
void rewriteEnds(MutablePageBytes page, const IndexPage &view, std::size_t skipped,
                 std::size_t index, std::ptrdiff_t shift)
{
    // Taken first, as the view may look at this very page.
    std::vector<std::size_t> ends;
    ends.reserve(view.count());
    for (std::size_t i = 0; i < view.count(); ++i) {
        const std::ptrdiff_t moved = i < index ? 0 : shift;
        if (i != skipped)
            ends.push_back(
                static_cast<std::size_t>(static_cast<std::ptrdiff_t>(view.endOf(i)) + moved));
    }
    std::ranges::fill(page.subspan(kBitmapOffset, kBitmapSize), std::uint8_t{0});
    for (const std::size_t end : ends)
        markEnd(page, end);
}

} // namespace

IndexPage::IndexPage(PageRef page, PageNo pageNo, PageNo owner)
    : m_page(std::move(page)), m_pageNo(pageNo), m_leaf(hasType(*m_page, PageType::IndexLeaf)),
      m_prefix(readU16(*m_page, kPrefixOffset))
{
    if (!m_leaf && !hasType(*m_page, PageType::IndexNode))
        fail("is no index page");
    if (readU32(*m_page, kOwnerOffset) != owner)
        fail("belongs to the index of another table");
    if (m_prefix >= kEntryAreaSize)
        fail("has a prefix longer than its entries");
    findLast();
}

void IndexPage::fail(const char *what) const
{
    throwDamaged("page " + std::to_string(m_pageNo) + " " + what, m_pageNo);
}

/// Counts the entries and finds the last one, which is all that adding at the end needs.
void IndexPage::findLast()
{
    const ByteView bitmap = PageBytes(*m_page).subspan(kBitmapOffset, kBitmapSize);
    const auto take = [&](std::uint64_t bits, std::size_t first) {
        if (bits == 0)
            return;
        m_count += static_cast<std::size_t>(std::popcount(bits));
        const auto highest = static_cast<std::size_t>(std::bit_width(bits)) - 1;
        const std::uint64_t lower = bits & ~(std::uint64_t{1} << highest);
        m_lastStart =
            lower == 0 ? m_lastEnd : first + static_cast<std::size_t>(std::bit_width(lower)) - 1;
        m_lastEnd = first + highest;
    };
    std::size_t byte = 0;
    for (; byte + 8 <= bitmap.size(); byte += 8)
        take(readLittleEndian<std::uint64_t>(bitmap, byte), 8 * byte);
    for (; byte < bitmap.size(); ++byte)
        take(bitmap[byte], 8 * byte);
    if (m_count != 0)
        checkEntry(m_lastStart, m_lastEnd, m_count == 1);
}

void IndexPage::checkEntry(std::size_t start, std::size_t end, bool isFirst) const
{
    const std::size_t suffix = m_leaf ? kRowIdSize : kRowIdSize + kChildSize;
    const std::size_t stored = end - start;
    const std::size_t whole = isFirst ? stored : stored + m_prefix;
    if (end > kEntryAreaSize || stored == 0 || whole < suffix + 1 ||
        (isFirst && m_prefix >= stored) || (!isFirst && !m_leaf && stored < kChildSize))
        fail("has index entries that do not fit");
}

void IndexPage::findEnds() const
{
    const std::uint8_t *bitmap = m_page->data() + kBitmapOffset;
    std::size_t found = 0;
    std::size_t last = 0;
    for (std::size_t byte = 0; byte < kBitmapSize; ++byte) {
        for (unsigned bits = bitmap[byte]; bits != 0; bits &= bits - 1) {
            const std::size_t end = 8 * byte + static_cast<std::size_t>(std::countr_zero(bits));
            checkEntry(last, end, found == 0);
            m_ends[found++] = static_cast<std::uint16_t>(end);
            last = end;
        }
    }
    m_endsKnown = true;
}

std::size_t IndexPage::endOf(std::size_t index) const
{
    if (index + 1 == m_count)
        return m_lastEnd;
    if (!m_endsKnown)
        findEnds();
    return m_ends[index];
}

std::size_t IndexPage::startOf(std::size_t index) const
{
    if (index == 0)
        return 0;
    return index + 1 == m_count ? m_lastStart : endOf(index - 1);
}

IndexLinks IndexPage::links() const
{
    return {readU32(*m_page, kPreviousOffset), readU32(*m_page, kNextOffset)};
}

PageNo IndexPage::tail() const
{
    return m_leaf ? 0 : readU32(*m_page, kTailOffset);
}

ByteView IndexPage::stored(std::size_t index) const
{
    const std::size_t child = m_leaf ? 0 : kChildSize;
    return PageBytes(*m_page).subspan(kEntryArea + startOf(index),
                                      endOf(index) - startOf(index) - child);
}

void IndexPage::copyEntry(std::size_t index, Bytes &entry) const
{
    entry.clear();
    if (index != 0)
        appendBytes(entry, PageBytes(*m_page).subspan(kEntryArea, m_prefix));
    appendBytes(entry, stored(index));
}

Bytes IndexPage::entry(std::size_t index) const
{
    Bytes entry;
    copyEntry(index, entry);
    return entry;
}

RowPointer IndexPage::row(std::size_t index) const
{
    const ByteView bytes = stored(index);
    // A long prefix may take in the page part of the row id.
    if (bytes.size() >= kRowIdSize)
        return readRowId(bytes, bytes.size() - kRowIdSize);
    const Bytes whole = entry(index);
    return readRowId(whole, whole.size() - kRowIdSize);
}

std::strong_ordering IndexPage::compare(std::size_t index, ByteView entry) const
{
    if (index == 0 || m_prefix == 0)
        return compareBytes(stored(index), entry);
    const ByteView prefix = PageBytes(*m_page).subspan(kEntryArea, m_prefix);
    const std::size_t common = std::min(m_prefix, entry.size());
    const auto order = compareBytes(prefix, entry.first(common));
    if (order != std::strong_ordering::equal)
        return order;
    return compareBytes(stored(index), entry.subspan(common));
}

std::size_t IndexPage::lowerBound(ByteView entry) const
{
    // Tables mostly grow at the end of their index.
    if (m_count == 0 || compare(m_count - 1, entry) < 0)
        return m_count;
    std::size_t low = 0;
    std::size_t high = m_count - 1;
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (compare(middle, entry) < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

bool IndexPage::hasKey(std::size_t index, ByteView key) const
{
    const Bytes found = entry(index);
    return found.size() == key.size() + kRowIdSize &&
           std::equal(key.begin(), key.end(), found.begin());
}

std::vector<Bytes> IndexPage::entries() const
{
    std::vector<Bytes> all;
    all.reserve(m_count + 1);
    for (std::size_t i = 0; i < m_count; ++i)
        all.push_back(entry(i));
    return all;
}

std::vector<IndexChild> IndexPage::children() const
{
    std::vector<IndexChild> all;
    all.reserve(m_count + 2);
    for (std::size_t i = 0; i < m_count; ++i)
        all.push_back({entry(i), childPage(i)});
    if (tail() != 0)
        all.push_back({std::nullopt, tail()});
    return all;
}

std::size_t IndexPage::childFor(ByteView entry) const
{
    const std::size_t index = lowerBound(entry);
    if (index < m_count || tail() != 0)
        return index;
    if (m_count == 0)
        fail("is an index node without children");
    return m_count - 1;
}

PageNo IndexPage::childPage(std::size_t index) const
{
    if (index == m_count)
        return tail();
    return readU32BigEndian(*m_page, kEntryArea + endOf(index) - kChildSize);
}

void setLinks(MutablePageBytes page, IndexLinks links)
{
    writeU32(page, kPreviousOffset, links.previous);
    writeU32(page, kNextOffset, links.next);
}

void writeLeaf(MutablePageBytes page, PageNo owner, IndexLinks links,
               std::span<const Bytes> entries)
{
    initPage(page, PageType::IndexLeaf, owner, links);
    std::size_t used = 0;
    for (const Bytes &entry : entries) {
        used = append(page, used, entry);
        markEnd(page, used);
    }
    setFree(page, used);
}

void writeNode(MutablePageBytes page, PageNo owner, IndexLinks links, std::uint8_t level,
               std::span<const IndexChild> children)
{
    initPage(page, PageType::IndexNode, owner, links);
    page[kLevelOffset] = level;
    const bool withTail = children.size() > 1 || !children.back().last;
    if (withTail)
        writeU32(page, kTailOffset, children.back().page);
    std::size_t used = 0;
    for (const IndexChild &child : children.first(children.size() - (withTail ? 1 : 0))) {
        used = append(page, used, *child.last);
        Bytes number;
        appendBigEndian<kChildSize>(number, child.page);
        used = append(page, used, number);
        markEnd(page, used);
    }
    setFree(page, used);
}

bool insertEntry(MutablePageBytes page, const IndexPage &view, std::size_t index, ByteView entry)
{
    const std::size_t prefix = view.prefixLength();
    if (prefix != 0) {
        // The page keeps its prefix as long as the new entry shares it and is not the first.
        const ByteView shared = PageBytes(page).subspan(kEntryArea, prefix);
        if (index == 0 || entry.size() < prefix || !std::ranges::equal(shared, entry.first(prefix)))
            return false;
        entry = entry.subspan(prefix);
    }
    const std::size_t used = view.usedBytes();
    if (used + entry.size() > kEntryAreaSize)
        return false;
    const std::size_t start = view.startOf(index);
    std::uint8_t *area = page.data() + kEntryArea;
    std::memmove(area + start + entry.size(), area + start, used - start);
    std::ranges::copy(entry, area + start);
    if (index != view.count())
        rewriteEnds(page, view, view.count(), index, static_cast<std::ptrdiff_t>(entry.size()));
    markEnd(page, start + entry.size());
    setFree(page, used + entry.size());
    return true;
}

void eraseEntry(MutablePageBytes page, const IndexPage &view, std::size_t index)
{
    const std::size_t used = view.usedBytes();
    std::size_t end = view.endOf(index);
    std::size_t start = view.startOf(index);
    if (index == 0 && view.count() > 1) {
        // The next entry becomes the first one and is stored whole: the prefix stays in its place.
        start += view.prefixLength();
    }
    std::uint8_t *area = page.data() + kEntryArea;
    const std::size_t removed = end - start;
    std::memmove(area + start, area + end, used - end);
    std::memset(area + used - removed, 0, removed);
    rewriteEnds(page, view, index, index, -static_cast<std::ptrdiff_t>(removed));
    setFree(page, used - removed);
    if (view.count() == 1)
        writeU16(page, kPrefixOffset, 0);
}

} // namespace jet
