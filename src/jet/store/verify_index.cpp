#include "jet/store/index_tree.h"
#include "jet/store/table_store.h"
#include "jet/store/verify.h"

#include <algorithm>

namespace jet
{
namespace
{

/// Descends a tree and reports what is out of order.
class TreeWalk
{
public:
    TreeWalk(const IndexTree &tree, std::vector<PageNo> &pages, std::vector<Finding> &findings)
        : m_tree(tree), m_pages(pages), m_findings(findings)
    {
    }

    void run()
    {
        visit(m_tree.root(), kMaxIndexDepth);
        checkLinks();
    }

    const std::vector<Bytes> &entries() const { return m_entries; }

private:
    struct Leaf {
        PageNo page;
        IndexLinks links;
    };

    void report(PageNo page, const std::string &reason) { m_findings.push_back({page, reason}); }

    /// The greatest entry below a page; nullopt for an empty leaf.
    std::optional<Bytes> visit(PageNo number, std::size_t depth)
    {
        if (depth == 0 || m_pages.size() > m_tree.pager().pageCount()) {
            if (!m_lost)
                report(number, "an index leads in a circle");
            m_lost = true;
            return std::nullopt;
        }
        m_pages.push_back(number);
        const IndexPage view = m_tree.page(number);
        if (kEntryAreaSize - view.usedBytes() != readU16(*m_tree.pager().read(number), 2))
            report(number, "an index page counts its free bytes wrongly");
        if (view.isLeaf())
            return visitLeaf(view, number);
        if (view.count() == 0 && view.tail() == 0)
            report(number, "an index node has no children");
        std::optional<Bytes> greatest;
        for (const IndexChild &child : view.children()) {
            greatest = visit(child.page, depth - 1);
            if (child.last && greatest != child.last)
                report(number, "an index node does not hold the greatest entry of page " +
                                   std::to_string(child.page));
        }
        return greatest;
    }

    std::optional<Bytes> visitLeaf(const IndexPage &view, PageNo number)
    {
        m_leaves.push_back({number, view.links()});
        if (view.count() == 0 && number != m_tree.root())
            report(number, "an index leaf is empty");
        for (std::size_t i = 0; i < view.count(); ++i) {
            Bytes entry = view.entry(i);
            if (!m_entries.empty() && entry <= m_entries.back())
                report(number, "the entries of an index are out of order");
            m_entries.push_back(std::move(entry));
        }
        if (m_entries.empty())
            return std::nullopt;
        return m_entries.back();
    }

    void checkLinks()
    {
        for (std::size_t i = 0; i < m_leaves.size(); ++i) {
            const PageNo previous = i == 0 ? 0 : m_leaves[i - 1].page;
            const PageNo next = i + 1 == m_leaves.size() ? 0 : m_leaves[i + 1].page;
            if (m_leaves[i].links.previous != previous || m_leaves[i].links.next != next)
                report(m_leaves[i].page, "an index leaf names the wrong neighbours");
        }
    }

    const IndexTree &m_tree;
    std::vector<PageNo> &m_pages;
    std::vector<Finding> &m_findings;
    std::vector<Leaf> m_leaves;
    std::vector<Bytes> m_entries;
    bool m_lost = false;
};

} // namespace

void verifyIndex(const TableStore &table, std::size_t realIndex,
                 std::optional<std::vector<ExpectedEntry>> expected, std::vector<PageNo> &pages,
                 std::vector<Finding> &findings)
{
    const IndexTree tree = table.tree(realIndex);
    TreeWalk walk(tree, pages, findings);
    try {
        walk.run();
    } catch (const Error &error) {
        findings.push_back({error.page(), error.what()});
        return;
    }
    if (!expected)
        return;
    std::ranges::sort(*expected, {}, &ExpectedEntry::bytes);
    if (!std::ranges::equal(*expected, walk.entries(), {}, &ExpectedEntry::bytes))
        findings.push_back({tree.root(), "an index has " + std::to_string(walk.entries().size()) +
                                             " entries that are not those of its " +
                                             std::to_string(expected->size()) + " rows"});
    if (!table.definition().realIndexes[realIndex].isUnique())
        return;
    const auto sameKey = [](const ExpectedEntry &left, const ExpectedEntry &right) {
        return !left.anyNull && left.bytes.size() == right.bytes.size() &&
               std::equal(left.bytes.begin(), left.bytes.end() - kRowIdSize, right.bytes.begin());
    };
    if (std::ranges::adjacent_find(*expected, sameKey) != expected->end())
        findings.push_back({tree.root(), "a unique index holds a key twice"});
}

} // namespace jet
