#include "jet/format/index_page.h"

#include "jet/format/bitmap.h"
#include "jet/format/entry_ends.h"

#include <algorithm>
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
    page[kEndsOffset + end / 8] =
        static_cast<std::uint8_t>(page[kEndsOffset + end / 8] | 1U << (end % 8));
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

ByteView bitmapOf(PageBytes page)
{
    return page.subspan(kEndsOffset, kEndsSize);
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

/// Finds the last entry only: appending needs no other.
void IndexPage::findLast()
{
    const auto end = lastBit(bitmapOf(*m_page), kBitmapBits);
    if (!end)
        return;
    const auto start = lastBit(bitmapOf(*m_page), *end);
    m_lastEnd = *end;
    m_lastStart = start.value_or(0);
    checkEntry(m_lastStart, m_lastEnd, !start);
}

std::size_t IndexPage::count() const
{
    if (!m_count)
        m_count = countBits(bitmapOf(*m_page));
    return *m_count;
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
    const std::uint8_t *bitmap = m_page->data() + kEndsOffset;
    std::size_t found = 0;
    std::size_t last = 0;
    for (std::size_t byte = 0; byte < kEndsSize; ++byte) {
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
    if (index == 0 && !m_endsKnown && !isEmpty()) {
        const std::size_t end = *firstBit(bitmapOf(*m_page), 0);
        checkEntry(0, end, true);
        return end;
    }
    if (!m_endsKnown)
        findEnds();
    return m_ends[index];
}

std::size_t IndexPage::startOf(std::size_t index) const
{
    return index == 0 ? 0 : endOf(index - 1);
}

IndexLinks IndexPage::links() const
{
    return {readU32(*m_page, kPreviousOffset), readU32(*m_page, kNextOffset)};
}

PageNo IndexPage::tail() const
{
    return m_leaf ? 0 : readU32(*m_page, kTailOffset);
}

ByteView IndexPage::storedAt(std::size_t start, std::size_t end) const
{
    return PageBytes(*m_page).subspan(kEntryArea + start, end - start - (m_leaf ? 0 : kChildSize));
}

ByteView IndexPage::stored(std::size_t index) const
{
    return storedAt(startOf(index), endOf(index));
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
    // A long prefix may extend into the page number of the row id.
    if (bytes.size() >= kRowIdSize)
        return readRowId(bytes, bytes.size() - kRowIdSize);
    const Bytes whole = entry(index);
    return readRowId(whole, whole.size() - kRowIdSize);
}

std::strong_ordering IndexPage::compare(ByteView stored, bool isFirst, ByteView entry) const
{
    if (isFirst || m_prefix == 0)
        return compareBytes(stored, entry);
    const ByteView prefix = PageBytes(*m_page).subspan(kEntryArea, m_prefix);
    const std::size_t common = std::min(m_prefix, entry.size());
    const auto order = compareBytes(prefix, entry.first(common));
    if (order != std::strong_ordering::equal)
        return order;
    return compareBytes(stored, entry.subspan(common));
}

bool IndexPage::endsBefore(ByteView entry) const
{
    return isEmpty() || compare(storedAt(m_lastStart, m_lastEnd), m_lastStart == 0, entry) < 0;
}

std::size_t IndexPage::lowerBound(ByteView entry) const
{
    // Most tables grow at the end of an index and are emptied from its start.
    if (endsBefore(entry))
        return count();
    if (compare(stored(0), true, entry) >= 0)
        return 0;
    std::size_t low = 1;
    std::size_t high = count() - 1;
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (compare(stored(middle), false, entry) < 0)
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
    all.reserve(count() + 1);
    for (std::size_t i = 0; i < count(); ++i)
        all.push_back(entry(i));
    return all;
}

std::vector<IndexChild> IndexPage::children() const
{
    std::vector<IndexChild> all;
    all.reserve(count() + 2);
    for (std::size_t i = 0; i < count(); ++i)
        all.push_back({entry(i), childPage(i)});
    if (tail() != 0)
        all.push_back({std::nullopt, tail()});
    return all;
}

std::optional<std::size_t> IndexPage::childFor(ByteView entry) const
{
    const bool isBehind = endsBefore(entry);
    if (isBehind && tail() != 0)
        return std::nullopt;
    if (isEmpty())
        fail("is an index node without children");
    return isBehind ? count() - 1 : lowerBound(entry);
}

PageNo IndexPage::childPage(std::size_t index) const
{
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

namespace
{

/// The part of an entry after the page's prefix; nullopt when it does not share the prefix or there
/// is no room.
std::optional<ByteView> storedPart(PageBytes page, const IndexPage &view, bool isFirst,
                                   ByteView entry)
{
    const std::size_t prefix = view.prefixLength();
    if (prefix != 0) {
        const ByteView shared = page.subspan(kEntryArea, prefix);
        if (isFirst || entry.size() < prefix || !std::ranges::equal(shared, entry.first(prefix)))
            return std::nullopt;
        entry = entry.subspan(prefix);
    }
    if (view.usedBytes() + entry.size() > kEntryAreaSize)
        return std::nullopt;
    return entry;
}

} // namespace

bool appendEntry(MutablePageBytes page, const IndexPage &view, ByteView entry)
{
    const auto stored = storedPart(page, view, view.isEmpty(), entry);
    if (!stored)
        return false;
    const std::size_t end = append(page, view.usedBytes(), *stored);
    markEnd(page, end);
    setFree(page, end);
    return true;
}

bool insertEntry(MutablePageBytes page, const IndexPage &view, std::size_t index, ByteView entry)
{
    const auto stored = storedPart(page, view, index == 0, entry);
    if (!stored)
        return false;
    const std::size_t used = view.usedBytes();
    const std::size_t start = view.startOf(index);
    std::uint8_t *area = page.data() + kEntryArea;
    std::memmove(area + start + stored->size(), area + start, used - start);
    std::ranges::copy(*stored, area + start);
    EntryEnds ends(page);
    ends.insert(start + 1, stored->size());
    ends.set(start + stored->size());
    ends.store(page);
    setFree(page, used + stored->size());
    return true;
}

void eraseEntry(MutablePageBytes page, const IndexPage &view, std::size_t index)
{
    const std::size_t used = view.usedBytes();
    const std::size_t end = view.endOf(index);
    std::size_t start = view.startOf(index);
    const bool isOnly = index == 0 && end == used;
    if (index == 0 && !isOnly) {
        // The next entry becomes the first one and is stored whole; the prefix stays where it is.
        start += view.prefixLength();
    }
    std::uint8_t *area = page.data() + kEntryArea;
    const std::size_t removed = end - start;
    std::memmove(area + start, area + end, used - end);
    std::memset(area + used - removed, 0, removed);
    EntryEnds ends(page);
    ends.remove(start + 1, removed);
    ends.store(page);
    setFree(page, used - removed);
    if (isOnly)
        writeU16(page, kPrefixOffset, 0);
}

} // namespace jet
