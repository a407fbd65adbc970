#include "jet/store/verify.h"

#include "jet/format/header_page.h"
#include "jet/store/catalog.h"
#include "jet/store/table_store.h"
#include "jet/store/usage_map.h"

#include <algorithm>
#include <set>

namespace jet
{
namespace
{

/// Runs one part of the check; damage that ends it becomes a finding.
template <typename Part>
void guarded(std::vector<Finding> &findings, Part &&part)
{
    try {
        part();
    } catch (const Error &error) {
        findings.push_back({error.page(), error.what()});
    }
}

class Verifier
{
public:
    explicit Verifier(Pager &pager) : m_pager(pager), m_users(pager.pageCount()) {}

    std::vector<Finding> run()
    {
        guarded(m_findings, [&] { checkHeaderPage(*m_pager.read(kHeaderPage)); });
        claim(kHeaderPage, "the header");
        claim(kGlobalMapPage, "the map of free pages");
        guarded(m_findings, [&] {
            for (const PageNo page : PageAllocator(m_pager).bitmapPages())
                claim(page, "the map of free pages");
        });
        std::vector<Catalog::Entry> tables;
        guarded(m_findings, [&] { tables = Catalog(m_pager).tables(); });
        for (const Catalog::Entry &entry : tables)
            guarded(m_findings, [&] { checkTable(entry); });
        guarded(m_findings, [&] { checkFreePages(); });
        return std::move(m_findings);
    }

private:
    void report(PageNo page, const std::string &reason) { m_findings.push_back({page, reason}); }

    /// Records the use of a page; a page can have one use only.
    void claim(PageNo page, const std::string &use)
    {
        if (page >= m_users.size()) {
            report(page, use + " names a page behind the end of the file");
            return;
        }
        if (!m_users[page].empty())
            report(page, "the page is used by " + m_users[page] + " and by " + use);
        else
            m_users[page] = use;
    }

    /// Usage maps share pages, within a table and sometimes with other tables.
    void claimMap(RowPointer place)
    {
        if (m_mapPages.insert(place.page).second)
            claim(place.page, "usage maps");
        checkDataPage(*m_pager.read(place.page), place.page, kUsageMapOwner);
        if (!m_maps.insert(place).second)
            report(place.page, "two tables or indexes use the same usage map");
        for (const PageNo page : UsageMap(m_pager, place).bitmapPages())
            claim(page, "a usage map");
    }

    void checkTable(const Catalog::Entry &entry)
    {
        const std::string name = "table " + std::to_string(entry.definition);
        for (const PageNo page : definitionPages(m_pager, entry.definition))
            claim(page, "the definition of " + name);
        const TableStore table(m_pager, entry.definition);
        const TableDefinition &definition = table.definition();
        checkStore(definition.ownedPages, definition.freeSpacePages, "rows of " + name);
        for (const LongValueMaps &column : definition.longValueMaps)
            checkStore(column.ownedPages, column.freeSpacePages, "long values of " + name);

        std::vector<std::optional<std::vector<ExpectedEntry>>> entries(
            definition.realIndexes.size());
        for (auto &list : entries)
            list.emplace();
        const std::uint32_t rows = checkRows(table, entries);
        // Other programs do not keep the counts of system tables exact.
        if (!entry.isSystem)
            guarded(m_findings, [&] { checkRowCount(table, rows); });
        for (std::size_t index = 0; index < entries.size(); ++index)
            checkIndex(table, index, std::move(entries[index]), name);
    }

    void checkRowCount(const TableStore &table, std::uint32_t rows)
    {
        const std::uint32_t counted = table.rowCount();
        if (rows != counted)
            report(table.page(), "the table counts " + std::to_string(counted) + " rows but has " +
                                     std::to_string(rows));
    }

    void checkStore(RowPointer owned, RowPointer freeSpace, const std::string &use)
    {
        claimMap(owned);
        const UsageMap pages(m_pager, owned);
        for (const PageNo page : pages.pages())
            claim(page, use);
        if (freeSpace.isNone())
            return;
        claimMap(freeSpace);
        for (const PageNo page : UsageMap(m_pager, freeSpace).pages()) {
            if (!pages.contains(page))
                report(page, "a page counts as having space for " + use + " but is not theirs");
        }
    }

    /// Reads every row and computes its index entries. Returns the number of rows.
    std::uint32_t checkRows(const TableStore &table,
                            std::vector<std::optional<std::vector<ExpectedEntry>>> &entries)
    {
        std::uint32_t count = 0;
        const UsageMap owned(m_pager, table.definition().ownedPages);
        for (const PageNo number : owned.pages()) {
            guarded(m_findings, [&] {
                const PageRef page = table.rows().page(number);
                checkPage(*page, number);
                for (std::size_t slot = 0; slot < slotCount(*page); ++slot) {
                    if (!slotAt(*page, number, slot).isRow())
                        continue;
                    ++count;
                    guarded(m_findings, [&] {
                        checkRow(table, {number, static_cast<std::uint8_t>(slot)}, entries);
                    });
                }
            });
        }
        return count;
    }

    void checkPage(PageBytes page, PageNo number)
    {
        const std::size_t slots = slotCount(page);
        const std::size_t end = slots == 0 ? kPageSize : slotAt(page, number, slots - 1).start;
        if (freeBytes(page) != end - kDataPageHeader - 2 * slots)
            report(number, "a page counts its free bytes wrongly");
    }

    void checkRow(const TableStore &table, RowPointer place,
                  std::vector<std::optional<std::vector<ExpectedEntry>>> &entries)
    {
        const Row values = table.read(place);
        for (std::size_t index = 0; index < entries.size(); ++index) {
            if (!entries[index])
                continue;
            try {
                if (const auto key = table.keyOf(index, values))
                    entries[index]->push_back({indexEntry(key->bytes, place), key->anyNull});
            } catch (const Error &error) {
                if (error.code() != ErrorCode::NotSupported)
                    throw;
                entries[index].reset(); // an order the engine does not know
            }
        }
    }

    void checkIndex(const TableStore &table, std::size_t index,
                    std::optional<std::vector<ExpectedEntry>> expected, const std::string &name)
    {
        std::vector<PageNo> pages;
        verifyIndex(table, index, std::move(expected), pages, m_findings);
        for (const PageNo page : pages)
            claim(page, "an index of " + name);
        guarded(m_findings, [&] { claimMap(table.definition().realIndexes[index].usageMap); });
    }

    void checkFreePages()
    {
        PageAllocator allocator(m_pager);
        for (PageNo page = 0; page < m_users.size(); ++page) {
            const bool isFree = allocator.isFree(page);
            if (isFree && !m_users[page].empty())
                report(page, "the page is used by " + m_users[page] + " but counts as free");
            else if (!isFree && m_users[page].empty())
                m_findings.push_back(
                    {page, "the page counts as used but belongs to nothing", true});
        }
    }

    Pager &m_pager;
    std::vector<std::string> m_users; ///< per page; empty = none found yet
    std::set<PageNo> m_mapPages;
    std::set<RowPointer> m_maps;
    std::vector<Finding> m_findings;
};

} // namespace

std::vector<Finding> verify(Pager &pager)
{
    return Verifier(pager).run();
}

} // namespace jet
