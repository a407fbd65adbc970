#include "jet/store/new_database.h"

#include "jet/file/draft.h"
#include "jet/file/pager.h"
#include "jet/format/data_page.h"
#include "jet/format/header_page.h"
#include "jet/format/index_page.h"
#include "jet/format/make_definition.h"
#include "jet/format/table_definition_codec.h"
#include "jet/store/session.h"
#include "jet/store/system_tables.h"
#include "jet/store/table_builder.h"
#include "jet/store/table_store.h"
#include "jet/store/usage_map.h"

#include <algorithm>

namespace jet
{
namespace
{

constexpr PageNo kMapPage = 6;     ///< the usage maps of all system tables
constexpr PageNo kFirstPages = 14; ///< up to the map page, and seven index roots
constexpr std::uint32_t kGlobalMapOwner = 1;

using FirstPages = std::vector<PageBuffer>;

void makeGlobalMap(PageBuffer &page)
{
    initDataPage(page, kGlobalMapOwner);
    Bytes free(kUsageMapRow, 0xFF);
    std::fill_n(free.begin(), 5, std::uint8_t{0}); // inline, from page 0 on
    for (PageNo used = 0; used < kFirstPages; ++used)
        free[5 + used / 8] = static_cast<std::uint8_t>(free[5 + used / 8] & ~(1U << (used % 8)));
    insertRow(page, free);
    insertRow(page, Bytes(kUsageMapRow, 0)); // a second map that is empty in every file
}

/// All maps, empty but for the roots of the indexes.
void makeUsageMaps(PageBuffer &page, const std::vector<TableDefinition> &tables)
{
    std::vector<Bytes> rows;
    const auto put = [&](RowPointer place, PageNo member) {
        if (rows.size() <= place.row)
            rows.resize(place.row + std::size_t{1});
        rows[place.row] = makeUsageMapRow(member);
    };
    for (const TableDefinition &table : tables) {
        put(table.ownedPages, 0);
        put(table.freeSpacePages, 0);
        for (const LongValueMaps &column : table.longValueMaps) {
            put(column.ownedPages, 0);
            put(column.freeSpacePages, 0);
        }
        for (const RealIndex &index : table.realIndexes)
            put(index.usageMap, index.root);
    }
    initDataPage(page, kUsageMapOwner);
    for (const Bytes &row : rows)
        insertRow(page, row);
}

FirstPages makeFirstPages()
{
    FirstPages pages(kFirstPages);
    std::ranges::copy(makeHeaderPage(), pages[kHeaderPage].begin());
    makeGlobalMap(pages[kGlobalMapPage]);
    std::vector<TableDefinition> tables;
    for (const SystemTable system : kSystemTables) {
        const PageNo page = systemTablePage(system);
        TableDefinition table = systemTableDefinition(system);
        table.rowCount = 0; // counted as the rows are added
        for (RealIndex &index : table.realIndexes) {
            index.uniqueEntries = 0;
            writeLeaf(pages.at(index.root), page, {}, {});
        }
        const std::vector<Bytes> images =
            splitDefinition(encodeTableDefinition(table), std::span(&page, 1));
        std::ranges::copy(images.front(), pages[page].begin());
        tables.push_back(std::move(table));
    }
    makeUsageMaps(pages[kMapPage], tables);
    return pages;
}

void addSystemRows(Pager &pager, DateTime now)
{
    pager.begin();
    for (const SystemTable system : kSystemTables) {
        TableStore table(pager, systemTablePage(system));
        for (Row &row : systemTableRows(system, now))
            table.insert(std::move(row));
    }
    pager.commit();
}

void addTables(Session &session, const std::vector<TableDesign> &tables, DateTime now)
{
    for (const TableDesign &design : tables) {
        session.write([&] {
            const PageNo page = buildTable(session.pager(), makeDefinition(design));
            session.catalog().add(design.name, page, now);
        });
    }
}

} // namespace

void writeNewDatabase(Draft &draft, DateTime now, const std::shared_ptr<FileSystem> &files,
                      const std::vector<TableDesign> &tables)
{
    PageNo number = 0;
    FirstPages pages = makeFirstPages();
    Draft::mark(pages[kHeaderPage]);
    for (const PageBuffer &page : pages)
        draft.file().write(fileOffset(number++), page);
    {
        Pager pager(files, draft.path(), {}, Pager::Use::Draft, nullptr);
        addSystemRows(pager, now);
    }
    Session session(files, draft.path(), {}, Pager::Use::Draft);
    addTables(session, tables, now);
}

void makeNewDatabase(const std::filesystem::path &path, DateTime now,
                     const std::shared_ptr<FileSystem> &files,
                     const std::vector<TableDesign> &tables)
{
    if (files->exists(path))
        throwFileExists(path);
    Draft draft(*files, path, ".new");
    writeNewDatabase(draft, now, files, tables);
    draft.takeFreeName();
}

} // namespace jet
