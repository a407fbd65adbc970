#pragma once

#include "jet/file/pager.h"
#include "jet/format/index_page.h"
#include "jet/format/table_definition.h"

#include <vector>

namespace jet
{

/// More levels than a tree in the largest file can have.
inline constexpr std::size_t kMaxIndexDepth = 24;

/// The B-tree of one index. An entry is the key's bytes followed by the row id.
class IndexTree
{
public:
    /// `owner` is the definition page of the table.
    IndexTree(Pager &pager, PageNo owner, const RealIndex &index)
        : m_pager(pager), m_owner(owner), m_root(index.root), m_map(index.usageMap)
    {
    }

    /// One page on the path down and the index of the child taken; nullopt for the tail of a node,
    /// and on the leaf.
    struct Step {
        PageNo page;
        std::optional<std::size_t> child;

        bool isTail() const { return !child; }
        std::size_t placeIn(const std::vector<IndexChild> &children) const
        {
            const std::size_t place = child.value_or(children.size() - 1);
            if (place >= children.size())
                throwDamaged("page " + std::to_string(page) + " lost its children", page);
            return place;
        }
    };
    using Path = std::vector<Step>;

    /// The path to where an entry, or the first one of a key, is or would be.
    Path descend(ByteView entry) const;
    bool hasKey(ByteView key) const { return hasKey(descend(key), key); }
    bool hasKey(const Path &path, ByteView key) const;
    /// Throws Error(RecordTooLarge) for a key that is too long for any page.
    static void checkSize(ByteView key);
    /// Throws as checkSize() does.
    void insert(ByteView entry) { insert(descend(entry), entry); }
    /// The same for an entry of a key that the tree does not hold, with the path to the key.
    void insert(const Path &path, ByteView entry);
    /// Throws Error(Damaged) when the entry is missing.
    void erase(ByteView entry);
    /// Empties the tree. Returns its former pages but the root, not yet released.
    [[nodiscard]] std::vector<PageNo> clear();

    /// All pages of the tree, the root first.
    std::vector<PageNo> pages() const;
    PageNo root() const { return m_root; }
    PageNo owner() const { return m_owner; }
    Pager &pager() const { return m_pager; }

    IndexPage page(PageNo page) const { return {m_pager.read(page), page, m_owner}; }
    /// The leaf that holds an entry or would hold it.
    PageNo leafFor(ByteView entry) const;
    /// The first or the last leaf.
    PageNo edgeLeaf(bool last) const;

private:
    void checkDepth(std::size_t depth, PageNo page) const;
    void storeLeaf(const Path &path, std::vector<Bytes> entries, bool appended);
    void storeNode(const Path &path, std::size_t level, std::vector<IndexChild> children);
    void removeChild(const Path &path, std::size_t level);
    void fixCopies(const Bytes &greatest);
    std::vector<PageNo> addPages(PageNo after, std::size_t count);
    void unlink(PageNo page);
    void addToMap(PageNo page);
    Bytes greatestBelow(PageNo page) const;

    Pager &m_pager;
    PageNo m_owner;
    PageNo m_root;
    RowPointer m_map;
};

} // namespace jet
