#include "jet/store/table_builder.h"

#include "jet/format/data_page.h"
#include "jet/format/index_page.h"
#include "jet/format/table_definition_codec.h"
#include "jet/store/table_store.h"
#include "jet/store/usage_map.h"

#include <algorithm>
#include <set>

namespace jet
{
namespace
{

/// Stores usage maps on pages of their own for one table.
class MapPages
{
public:
    explicit MapPages(Pager &pager) : m_pager(pager) {}

    RowPointer add(PageNo member = 0)
    {
        const Bytes row = makeUsageMapRow(member);
        if (m_page != 0) {
            if (const auto slot = insertRow(m_pager.edit(m_page), row))
                return {m_page, *slot};
        }
        m_page = PageAllocator(m_pager).allocate();
        initDataPage(m_pager.edit(m_page), kUsageMapOwner);
        return {m_page, insertRow(m_pager.edit(m_page), row).value()};
    }

private:
    Pager &m_pager;
    PageNo m_page = 0;
};

/// All maps of a table; files of other programs lack some.
std::vector<RowPointer> mapsOf(const TableDefinition &table)
{
    std::vector<RowPointer> maps{table.ownedPages, table.freeSpacePages};
    for (const RealIndex &index : table.realIndexes)
        maps.push_back(index.usageMap);
    for (const LongValueMaps &column : table.longValueMaps) {
        maps.push_back(column.ownedPages);
        maps.push_back(column.freeSpacePages);
    }
    std::erase_if(maps, [](RowPointer map) { return map.isNone(); });
    return maps;
}

} // namespace

PageNo buildTable(Pager &pager, TableDefinition table)
{
    PageAllocator allocator(pager);
    std::vector<PageNo> pages;
    const std::size_t pageCount = definitionPageCount(encodeTableDefinition(table).size());
    for (std::size_t i = 0; i < pageCount; ++i) {
        pages.push_back(allocator.allocate());
        pager.edit(pages.back()); // reserved; written last
    }
    MapPages maps(pager);
    table.ownedPages = maps.add();
    table.freeSpacePages = maps.add();
    for (LongValueMaps &column : table.longValueMaps) {
        column.ownedPages = maps.add();
        column.freeSpacePages = maps.add();
    }
    for (RealIndex &index : table.realIndexes) {
        index.root = allocator.allocate();
        writeLeaf(pager.edit(index.root), pages.front(), {}, {});
        index.usageMap = maps.add(index.root);
    }
    const std::vector<Bytes> images = splitDefinition(encodeTableDefinition(table), pages);
    for (std::size_t i = 0; i < pages.size(); ++i)
        std::ranges::copy(images[i], pager.edit(pages[i]).begin());
    return pages.front();
}

void destroyTable(Pager &pager, PageNo definitionPage)
{
    TableStore table(pager, definitionPage);
    table.clear();
    std::vector<PageNo> unused = definitionPages(pager, definitionPage);
    for (std::size_t index = 0; index < table.definition().realIndexes.size(); ++index) {
        unused.push_back(table.tree(index).root());
        // Holds the root alone after clear(), but may have needed a bitmap for it.
        const UsageMap map(pager, table.definition().realIndexes[index].usageMap);
        std::ranges::copy(map.bitmapPages(), std::back_inserter(unused));
    }
    std::set<PageNo> mapPages;
    for (const RowPointer &map : mapsOf(table.definition())) {
        checkDataPage(*pager.read(map.page), map.page, kUsageMapOwner);
        deleteRow(pager.edit(map.page), map.page, map.row);
        mapPages.insert(map.page);
    }
    // Other programs may have put maps of several tables on one page.
    for (const PageNo page : mapPages) {
        if (isEmptyOfRows(*pager.read(page), page))
            unused.push_back(page);
    }
    PageAllocator(pager).release(unused);
}

} // namespace jet
