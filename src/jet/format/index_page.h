#pragma once

#include "jet/format/page.h"

#include <array>
#include <optional>
#include <span>
#include <vector>

namespace jet
{

// Page of an index tree; offsets from the page start:
//   0 u8 3 node, 4 leaf | 1 u8 1 | 2 u16 free bytes | 4 u32 definition page of the table |
//   8 u32 0 | 12 u32 previous, 16 u32 next page of the level | 20 u32 node: tail child |
//  24 u16 prefix length | 26 u8 level, 0 = leaf |
//  27 453 bytes bitmap: bit k set = an entry ends at byte k of the area |
// 480 area: entries back to back
// An entry is key bytes and row id; on nodes the page of the child follows. All entries but the
// first leave out the prefix they share with it. A node holds for every child but the last a copy
// of the greatest entry below it; the last child is the tail. Entries ascend and are unique.

inline constexpr std::size_t kEntryArea = 480;
inline constexpr std::size_t kEntryAreaSize = kPageSize - kEntryArea;
/// The bitmap; it has slightly more bits than the area has bytes.
inline constexpr std::size_t kEndsOffset = 27;
inline constexpr std::size_t kEndsSize = kEntryArea - kEndsOffset;
inline constexpr std::size_t kBitmapBits = kEndsSize * 8;
inline constexpr std::size_t kRowIdSize = 4;
inline constexpr std::size_t kChildSize = 4;
/// A page of longer entries could not be split.
inline constexpr std::size_t kMaxEntrySize = kEntryAreaSize / 2 - kChildSize;

/// A child of a node. `last` is the greatest entry below it; unknown for a tail.
struct IndexChild {
    std::optional<Bytes> last;
    PageNo page = 0;
};

/// Links of a page to its neighbours on the same level; 0 = none.
struct IndexLinks {
    PageNo previous = 0;
    PageNo next = 0;
};

/// The entries of one page.
class IndexPage
{
public:
    /// Throws Error(Damaged) when the page is no index page of the table or its entries do not fit.
    IndexPage(PageRef page, PageNo pageNo, PageNo owner);

    bool isLeaf() const { return m_leaf; }
    std::uint8_t level() const { return (*m_page)[26]; }
    IndexLinks links() const;
    PageNo tail() const;

    bool isEmpty() const { return m_lastEnd == 0; }
    std::size_t count() const;
    /// Key and row id; without the child page on nodes.
    Bytes entry(std::size_t index) const;
    void copyEntry(std::size_t index, Bytes &entry) const;
    RowPointer row(std::size_t index) const;
    /// True when every entry is less than `entry`; faster than counting them.
    bool endsBefore(ByteView entry) const;
    /// Number of entries less than `entry`.
    std::size_t lowerBound(ByteView entry) const;
    /// True when an entry consists of exactly this key and any row id.
    bool hasKey(std::size_t index, ByteView key) const;

    std::vector<Bytes> entries() const;
    /// Of a node: all children, the tail included.
    std::vector<IndexChild> children() const;
    /// Of a node: the child that an entry belongs to, as an index into children(); nullopt for the
    /// tail.
    std::optional<std::size_t> childFor(ByteView entry) const;
    /// Of a node: the page of a child that is not the tail.
    PageNo childPage(std::size_t index) const;

    std::size_t prefixLength() const { return m_prefix; }
    std::size_t usedBytes() const { return m_lastEnd; }
    std::size_t endOf(std::size_t index) const;
    std::size_t startOf(std::size_t index) const;

private:
    [[noreturn]] void fail(const char *what) const;
    void findLast();
    void findEnds() const;
    void checkEntry(std::size_t start, std::size_t end, bool isFirst) const;
    ByteView storedAt(std::size_t start, std::size_t end) const;
    ByteView stored(std::size_t index) const;
    std::strong_ordering compare(ByteView stored, bool isFirst, ByteView entry) const;

    PageRef m_page;
    PageNo m_pageNo;
    bool m_leaf;
    std::size_t m_prefix;
    std::size_t m_lastStart = 0;
    std::size_t m_lastEnd = 0;
    /// Computed on first use, as the others are.
    mutable std::optional<std::size_t> m_count;
    mutable bool m_endsKnown = false;
    mutable std::array<std::uint16_t, kBitmapBits> m_ends;
};

/// Writes a whole page without prefix; the entries must fit. `tail` is 0 on leaves.
void writeLeaf(MutablePageBytes page, PageNo owner, IndexLinks links,
               std::span<const Bytes> entries);
void writeNode(MutablePageBytes page, PageNo owner, IndexLinks links, std::uint8_t level,
               std::span<const IndexChild> children);
void setLinks(MutablePageBytes page, IndexLinks links);

/// Appends an entry to a leaf; false when the page, as it is compressed, has no room.
bool appendEntry(MutablePageBytes page, const IndexPage &view, ByteView entry);
/// Inserts an entry before another one. What the view has not computed yet it will read from the
/// changed page.
bool insertEntry(MutablePageBytes page, const IndexPage &view, std::size_t index, ByteView entry);
/// Removes an entry from a leaf.
void eraseEntry(MutablePageBytes page, const IndexPage &view, std::size_t index);

} // namespace jet
