#pragma once

#include "jet/file.h"
#include "jet/page.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>

namespace jet
{

// The journal, name.jrn beside the database, makes a statement all or nothing: it receives the new
// content of every page before the first of them is written to the database. Integers are
// little-endian:
//    0 "JETJRN1" 0 | 8 u32 pages of the database before | 12 u32 after | 16 u32 number of records |
//   20 u32 0 | 24 u64 hash of page 0 | 32 u64 hash of page 1 before
//   then per record, pages ascending: u32 page | u32 0 | 8 x u64 hash of the old page's sectors |
//   4096 bytes new content
//   then u64 hash of everything before it
//
// Order of writes of a statement: journal, sync; pages of the database, sync; journal emptied. Cut
// off anywhere before the first sync, the journal's own hash does not match and the database is
// untouched. Cut off later, the pages are written again from the journal. Emptying needs no sync: a
// journal that comes back after a loss of power only repeats what the database already holds.

inline constexpr std::size_t kSectorSize = 512; ///< what a disk writes whole or not at all

/// The change of one page by a statement.
struct PageChange {
    PageNo page = 0;
    const PageBuffer *before = nullptr; ///< null for a page the file did not have
    const PageBuffer *after = nullptr;
};

class Journal
{
public:
    /// Replaces the journal's content. `header` is page 0, `globalMap` page 1 before the statement;
    /// `changes` are sorted by page.
    static void write(File &file, PageNo pagesBefore, PageNo pagesAfter, PageBytes header,
                      PageBytes globalMap, std::span<const PageChange> changes);

    /// The statement in a journal, or nothing when it was not written whole.
    static std::optional<Journal> read(File &file);

    /// True when the database is in a state that the interrupted statement can have left: its size
    /// lies between before and after, and every sector is the old or the new one. Anything else
    /// was written by another program since, and the journal must not be used.
    bool fits(File &database) const;

    PageNo pagesAfter() const { return m_pagesAfter; }
    const std::map<PageNo, PageRef> &pages() const { return m_pages; }

private:
    struct OldPage {
        std::array<std::uint64_t, kPageSize / kSectorSize> sectorHashes{};
    };

    bool sectorsFit(PageNo page, PageBytes found) const;

    PageNo m_pagesBefore = 0;
    PageNo m_pagesAfter = 0;
    std::uint64_t m_headerHash = 0;
    std::uint64_t m_globalMapHash = 0;
    std::map<PageNo, PageRef> m_pages;
    std::map<PageNo, OldPage> m_oldPages;
};

/// Hash against accidents (FNV-1a over words of 8 bytes), not against malice.
std::uint64_t hashBytes(ByteView bytes, std::uint64_t seed = 0xCBF29CE484222325);

/// Writes pages to the database: neighbours together, ascending.
void writePages(File &database, std::span<const PageChange> changes);

} // namespace jet
