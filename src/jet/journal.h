#pragma once

#include "jet/file.h"
#include "jet/page.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace jet
{

// The journal, name.mdb.jrn beside the database, makes a statement all or nothing: it receives the
// new content of every page before the first of them is written to the database. Integers are
// little-endian:
//    0 "JETJRN2" 0 | 8 u32 pages of the database before | 12 u32 after | 16 u32 number of witnesses
//    |
//   20 u32 number of records
//   then per witness: u32 page | u32 0 | u64 hash of the page
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

/// A page that the statement relies on and leaves as it is.
struct PageWitness {
    PageNo page = 0;
    std::uint64_t hash = 0; ///< hashBytes() of it
};

class Journal
{
public:
    /// Replaces the journal's content. `changes` are sorted by page.
    static void write(File &file, PageNo pagesBefore, PageNo pagesAfter,
                      std::span<const PageWitness> witnesses, std::span<const PageChange> changes);

    /// The statement in a journal, or nothing when it was not written whole.
    static std::optional<Journal> read(File &file);

    /// True when the interrupted statement has begun to change the database and nobody else has
    /// since: the number of pages lies between before and after, every changed sector is the old or
    /// the new one, and every witness is as it was. False when nothing of the statement has reached
    /// the database, which then is whole without it, and when another program has written to it.
    bool mustBeFinished(File &database) const;

    PageNo pagesAfter() const { return m_pagesAfter; }
    const std::map<PageNo, PageRef> &pages() const { return m_pages; }

private:
    struct OldPage {
        std::array<std::uint64_t, kPageSize / kSectorSize> sectorHashes{};
    };

    enum class State { Old, Begun, Foreign };

    void readWitnesses(ByteView bytes);
    bool readRecord(ByteView bytes);
    State stateOf(PageNo page, PageBytes found) const;

    PageNo m_pagesBefore = 0;
    PageNo m_pagesAfter = 0;
    std::vector<PageWitness> m_witnesses;
    std::map<PageNo, PageRef> m_pages;
    std::map<PageNo, OldPage> m_oldPages;
};

/// Where the journal of a database stands.
std::filesystem::path journalPath(std::filesystem::path database);

/// Hash against accidents (FNV-1a over words of 8 bytes), not against malice.
std::uint64_t hashBytes(ByteView bytes, std::uint64_t seed = 0xCBF29CE484222325);

/// Writes pages to the database: neighbours together, ascending.
void writePages(File &database, std::span<const PageChange> changes);

} // namespace jet
