#include "jet/store/index_tree.h"

#include "jet/store/index_cursor.h"
#include "jet/store/usage_map.h"

#include <algorithm>

namespace jet
{
namespace
{

/// Splits a list of sizes into runs of similar size, each at most a page. Returns the lengths of
/// the runs.
std::vector<std::size_t> cutIntoPages(const std::vector<std::size_t> &sizes)
{
    std::size_t total = 0;
    for (const std::size_t size : sizes)
        total += size;
    const std::size_t pages =
        std::max<std::size_t>(2, (total + kEntryAreaSize - 1) / kEntryAreaSize);
    std::vector<std::size_t> runs;
    std::size_t used = 0;
    std::size_t length = 0;
    for (const std::size_t size : sizes) {
        const bool full = used + size > kEntryAreaSize;
        if (length > 0 && (full || used >= total / pages)) {
            runs.push_back(length);
            used = length = 0;
        }
        used += size;
        ++length;
    }
    runs.push_back(length);
    return runs;
}

std::size_t sizeOf(const IndexChild &child)
{
    return child.last ? child.last->size() + kChildSize : 0;
}

} // namespace

void IndexTree::checkDepth(std::size_t depth, PageNo page) const
{
    if (depth > kMaxIndexDepth)
        throwDamaged("an index leads in a circle at page " + std::to_string(page), page);
}

IndexTree::Path IndexTree::descend(ByteView entry) const
{
    Path path;
    path.reserve(4);
    PageNo next = m_root;
    for (;;) {
        checkDepth(path.size(), next);
        PageRef content = m_pager.read(next);
        if (hasType(*content, PageType::IndexLeaf)) {
            path.push_back({next, std::nullopt});
            return path;
        }
        const IndexPage view(std::move(content), next, m_owner);
        const std::optional<std::size_t> child = view.childFor(entry);
        path.push_back({next, child});
        next = child ? view.childPage(*child) : view.tail();
    }
}

PageNo IndexTree::leafFor(ByteView entry) const
{
    return descend(entry).back().page;
}

PageNo IndexTree::edgeLeaf(bool last) const
{
    PageNo next = m_root;
    for (std::size_t depth = 0;; ++depth) {
        checkDepth(depth, next);
        const IndexPage view = page(next);
        if (view.isLeaf())
            return next;
        const std::vector<IndexChild> children = view.children();
        if (children.empty())
            throwDamaged("page " + std::to_string(next) + " is an index node without children",
                         next);
        next = last ? children.back().page : children.front().page;
    }
}

bool IndexTree::hasKey(const Path &path, ByteView key) const
{
    const IndexPage leaf = page(path.back().page);
    if (!leaf.endsBefore(key))
        return leaf.hasKey(leaf.lowerBound(key), key);
    if (leaf.links().next == 0)
        return false;
    IndexCursor cursor(*this);
    return cursor.seek(key) && cursor.hasKey(key);
}

void IndexTree::checkSize(ByteView key)
{
    if (key.size() + kRowIdSize > kMaxEntrySize)
        throw Error(ErrorCode::RecordTooLarge, "The values of an index are too long.");
}

void IndexTree::insert(const Path &path, ByteView entry)
{
    checkSize(entry.first(entry.size() - kRowIdSize));
    const PageNo leaf = path.back().page;
    const IndexPage view = page(leaf);
    const bool atEnd = view.endsBefore(entry);
    PageBuffer &content = m_pager.edit(leaf);
    const bool fits = atEnd ? appendEntry(content, view, entry)
                            : insertEntry(content, view, view.lowerBound(entry), entry);
    if (!fits) {
        std::vector<Bytes> entries = view.entries();
        const std::size_t index = view.lowerBound(entry);
        entries.insert(entries.begin() + static_cast<std::ptrdiff_t>(index),
                       Bytes(entry.begin(), entry.end()));
        storeLeaf(path, std::move(entries), atEnd && view.links().next == 0);
    }
    if (atEnd && !std::ranges::all_of(path, &Step::isTail))
        fixCopies(Bytes(entry.begin(), entry.end()));
}

/// Writes the entries of the leaf at the end of a path, splitting it if necessary. `appended`: the
/// last entry is new and the greatest of all, so the full page before it stays full.
void IndexTree::storeLeaf(const Path &path, std::vector<Bytes> entries, bool appended)
{
    const PageNo leaf = path.back().page;
    const IndexLinks links = page(leaf).links();
    std::vector<std::size_t> sizes;
    std::size_t total = 0;
    for (const Bytes &entry : entries) {
        sizes.push_back(entry.size());
        total += entry.size();
    }
    if (total <= kEntryAreaSize) {
        writeLeaf(m_pager.edit(leaf), m_owner, links, entries);
        return;
    }
    std::vector<std::size_t> runs = cutIntoPages(sizes);
    const bool restFits = total - sizes.back() <= kEntryAreaSize;
    if (appended && restFits)
        runs = {entries.size() - 1, 1};

    // The root keeps its page, so all of its entries move to new pages.
    const bool isRoot = path.size() == 1;
    std::vector<PageNo> pages = addPages(isRoot ? 0 : leaf, runs.size() - (isRoot ? 0 : 1));
    if (!isRoot)
        pages.insert(pages.begin(), leaf);
    std::vector<IndexChild> pieces;
    std::size_t start = 0;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::span<const Bytes> run = std::span(entries).subspan(start, runs[i]);
        writeLeaf(m_pager.edit(pages[i]), m_owner, page(pages[i]).links(), run);
        pieces.push_back({run.back(), pages[i]});
        start += runs[i];
    }
    if (isRoot) {
        writeNode(m_pager.edit(m_root), m_owner, {}, 1, pieces);
        return;
    }
    const Step parent = path[path.size() - 2];
    std::vector<IndexChild> children = page(parent.page).children();
    const auto place = children.begin() + static_cast<std::ptrdiff_t>(parent.placeIn(children));
    pieces.back().last = place->last;
    children.insert(children.erase(place), pieces.begin(), pieces.end());
    storeNode(path, path.size() - 2, std::move(children));
}

/// Writes the children of the node at a level of a path, splitting it if necessary.
void IndexTree::storeNode(const Path &path, std::size_t level, std::vector<IndexChild> children)
{
    const PageNo node = path[level].page;
    const IndexPage view = page(node);
    const std::uint8_t height = view.level();
    if (children.size() == 1 && !children[0].last)
        children[0].last = greatestBelow(children[0].page);
    std::vector<std::size_t> sizes;
    std::size_t total = 0;
    for (const IndexChild &child : children) {
        sizes.push_back(sizeOf(child));
        total += sizes.back();
    }
    // The last child becomes the tail, which has no entry.
    if (total - (children.size() > 1 ? sizes.back() : 0) <= kEntryAreaSize) {
        writeNode(m_pager.edit(node), m_owner, view.links(), height, children);
        return;
    }
    const std::vector<std::size_t> runs = cutIntoPages(sizes);
    const bool isRoot = level == 0;
    std::vector<PageNo> pages = addPages(isRoot ? 0 : node, runs.size() - (isRoot ? 0 : 1));
    if (!isRoot)
        pages.insert(pages.begin(), node);
    std::vector<IndexChild> pieces;
    std::size_t start = 0;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        std::span<IndexChild> run = std::span(children).subspan(start, runs[i]);
        if (run.size() == 1 && !run[0].last)
            run[0].last = greatestBelow(run[0].page);
        pieces.push_back({run.back().last, pages[i]});
        writeNode(m_pager.edit(pages[i]), m_owner, page(pages[i]).links(), height, run);
        start += runs[i];
    }
    if (isRoot) {
        writeNode(m_pager.edit(m_root), m_owner, {}, static_cast<std::uint8_t>(height + 1), pieces);
        return;
    }
    const Step parent = path[level - 1];
    std::vector<IndexChild> siblings = page(parent.page).children();
    const auto place = siblings.begin() + static_cast<std::ptrdiff_t>(parent.placeIn(siblings));
    pieces.back().last = place->last;
    siblings.insert(siblings.erase(place), pieces.begin(), pieces.end());
    storeNode(path, level - 1, std::move(siblings));
}

/// Allocates pages and links them into a level after a page, or only to each other when it is 0.
/// They are empty leaves until they are written.
std::vector<PageNo> IndexTree::addPages(PageNo after, std::size_t count)
{
    PageAllocator allocator(m_pager);
    std::vector<PageNo> pages;
    for (std::size_t i = 0; i < count; ++i) {
        pages.push_back(allocator.allocate());
        addToMap(pages.back());
    }
    const PageNo following = after == 0 ? 0 : page(after).links().next;
    PageNo previous = after;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const PageNo next = i + 1 < pages.size() ? pages[i + 1] : following;
        writeLeaf(m_pager.edit(pages[i]), m_owner, {previous, next}, {});
        previous = pages[i];
    }
    if (after != 0)
        setLinks(m_pager.edit(after), {page(after).links().previous, pages.front()});
    if (following != 0)
        setLinks(m_pager.edit(following), {pages.back(), page(following).links().next});
    return pages;
}

void IndexTree::addToMap(PageNo page)
{
    UsageMap(m_pager, m_map).insert(page);
}

void IndexTree::unlink(PageNo unused)
{
    const IndexLinks links = page(unused).links();
    if (links.previous != 0)
        setLinks(m_pager.edit(links.previous), {page(links.previous).links().previous, links.next});
    if (links.next != 0)
        setLinks(m_pager.edit(links.next), {links.previous, page(links.next).links().next});
    UsageMap(m_pager, m_map).erase(unused);
    PageAllocator(m_pager).release(unused);
}

void IndexTree::erase(ByteView entry)
{
    const Path path = descend(entry);
    const PageNo leaf = path.back().page;
    const IndexPage view = page(leaf);
    const std::size_t index = view.endsBefore(entry) ? 0 : view.lowerBound(entry);
    if (view.isEmpty() || !std::ranges::equal(view.entry(index), entry))
        throwDamaged("a row is missing in an index", leaf);
    const bool wasLast = view.endOf(index) == view.usedBytes();
    if (wasLast && index == 0 && path.size() > 1) {
        removeChild(path, path.size() - 2);
        unlink(leaf);
        return;
    }
    eraseEntry(m_pager.edit(leaf), view, index);
    if (wasLast && path.size() > 1)
        fixCopies(page(leaf).entry(index - 1));
}

/// Removes the child on a path from the node at a level.
void IndexTree::removeChild(const Path &path, std::size_t level)
{
    const PageNo node = path[level].page;
    std::vector<IndexChild> children = page(node).children();
    const std::size_t place = path[level].placeIn(children);
    const bool wasLast = place + 1 == children.size();
    children.erase(children.begin() + static_cast<std::ptrdiff_t>(place));
    if (!children.empty()) {
        if (!wasLast) {
            storeNode(path, level, std::move(children));
            return;
        }
        const Bytes greatest =
            children.back().last ? *children.back().last : greatestBelow(children.back().page);
        storeNode(path, level, std::move(children));
        fixCopies(greatest);
    } else if (level == 0) {
        writeLeaf(m_pager.edit(m_root), m_owner, {}, {});
    } else {
        removeChild(path, level - 1);
        unlink(node);
    }
}

/// Updates the copies in the nodes above a leaf after its greatest entry has changed.
void IndexTree::fixCopies(const Bytes &greatest)
{
    for (;;) {
        const Path path = descend(greatest);
        bool changed = false;
        for (std::size_t level = path.size() - 1; level-- > 0 && !changed;) {
            if (path[level].isTail())
                continue;
            const IndexPage view = page(path[level].page);
            const std::size_t child = *path[level].child;
            if (view.entry(child) != greatest) {
                std::vector<IndexChild> children = view.children();
                children[child].last = greatest;
                storeNode(path, level, std::move(children));
                changed = true; // the node may have been split, so the path is searched again
            } else if (child + (view.tail() == 0 ? 1 : 0) < view.count()) {
                return; // not the node's last child, so the levels above copy another entry
            }
        }
        if (!changed)
            return;
    }
}

Bytes IndexTree::greatestBelow(PageNo start) const
{
    PageNo next = start;
    for (std::size_t depth = 0;; ++depth) {
        checkDepth(depth, next);
        const IndexPage view = page(next);
        if (view.tail() == 0) {
            if (view.count() == 0)
                throwDamaged("page " + std::to_string(next) + " of an index is empty", next);
            return view.entry(view.count() - 1);
        }
        next = view.tail();
    }
}

std::vector<PageNo> IndexTree::pages() const
{
    std::vector<PageNo> all;
    std::vector<PageNo> level{m_root};
    for (std::size_t depth = 0; !level.empty(); ++depth) {
        std::vector<PageNo> below;
        for (const PageNo number : level) {
            // Also ends on a damaged tree whose nodes share children.
            if (all.size() > m_pager.pageCount())
                checkDepth(kMaxIndexDepth + 1, number);
            checkDepth(depth, number);
            all.push_back(number);
            const IndexPage view = page(number);
            if (view.isLeaf())
                continue;
            for (const IndexChild &child : view.children())
                below.push_back(child.page);
        }
        level = std::move(below);
    }
    return all;
}

std::vector<PageNo> IndexTree::clear()
{
    std::vector<PageNo> unused = pages();
    unused.erase(unused.begin());
    writeLeaf(m_pager.edit(m_root), m_owner, {}, {});
    UsageMap map(m_pager, m_map);
    const std::vector<PageNo> bitmaps = map.clear();
    unused.insert(unused.end(), bitmaps.begin(), bitmaps.end());
    map.insert(m_root);
    return unused;
}

} // namespace jet
