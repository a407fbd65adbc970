#pragma once

#include "jet/file/file.h"
#include "jet/format/page.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace jet
{

// The journal, name.mdb.jrn beside the database, makes a statement all or nothing: it receives the
// new content of every page before the first of them is written to the database. The file stays
// when the database is closed, and the next statement overwrites it in place, so that neither its
// name nor its size has to be synced again. Integers are little-endian:
//    0 "JRNNAME" 0 once the name of the journal is known to be on the disk, else zeros
//  512 the statement; its first 8 bytes are zeros when there is none to finish:
//      0 "JETJRN3" 0 | 8 u32 pages of the database before | 12 u32 after | 16 u32 number of
//      witnesses | 20 u32 number of records
//      then per witness: u32 page | u32 0 | u64 hash of the page
//      then per record, pages ascending: u32 page | u32 0 | 8 x u64 hash of the old page's sectors
//      | 4096 bytes new content
//      then u64 hash of everything before it, from the statement's start
//      then anything, up to a multiple of 64 KiB
// Earlier versions wrote "JETJRN2" and the same statement at offset 0; it is read as well.
//
// The first record is always page 0: it holds the change counter (header_page.h), which
// distinguishes each state of the database from every other, and from those of its copies.
//
// Order of writes of a statement:
//   1. the statement into the journal, sync; for a name not known to be on the disk: sync of the
//      folder, then the mark at offset 0
//   2. pages of the database, page 0 first, sync
//   3. zeros over the statement's first bytes
// Interrupted before the sync of 1, the statement's own hash does not match and the database is
// untouched. Interrupted later, the pages are written again from the journal. The mark has a sector
// of its own: lost or garbled, it only costs another sync of the folder. Step 3 needs no sync: a
// statement that reappears after a loss of power only repeats what the database already holds, and
// the next statement replaces it before it touches the database.

inline constexpr std::size_t kSectorSize = 512; ///< what a disk writes atomically

/// The change of one page by a statement.
struct PageChange {
    PageNo page = 0;
    const PageBuffer *before = nullptr; ///< null for a page the file did not have
    const PageBuffer *after = nullptr;
};

/// A page that the statement has read and does not change.
struct PageWitness {
    PageNo page = 0;
    std::uint64_t hash = 0; ///< hashBytes() of it
};

/// How the content of the database relates to a statement.
struct JournalTraces {
    bool lengthFits = true;       ///< as many pages as before, after or between
    bool reliedOnIsSame = true;   ///< every witness, page 0 aside
    bool isBegun = false;         ///< something of the statement is in the file
    bool isTorn = false;          ///< a sector besides page 0 is neither the old nor the new one
    bool headerIsTorn = false;    ///< likewise in page 0, its change counter aside
    bool headerIsForeign = false; ///< the change counter is that of another state
};

class Journal
{
public:
    /// Replaces the statement; returns where it ends. `changes` are sorted by page.
    static std::uint64_t write(File &file, PageNo pagesBefore, PageNo pagesAfter,
                               std::span<const PageWitness> witnesses,
                               std::span<const PageChange> changes);

    /// The statement in a journal; nullopt when none is complete.
    static std::optional<Journal> read(File &file);

    JournalTraces tracesIn(File &database) const;

    PageNo pagesAfter() const { return m_pagesAfter; }
    const std::map<PageNo, PageRef> &pages() const { return m_pages; }

private:
    struct OldPage {
        std::array<std::uint64_t, kPageSize / kSectorSize> sectorHashes{};
    };

    enum class State { Old, Begun, Foreign };

    static std::optional<Journal> readAt(File &file, std::uint64_t start,
                                         std::span<const std::uint8_t, 8> magic);
    void readWitnesses(ByteView bytes);
    bool readRecord(ByteView bytes);
    State stateOf(PageNo page, PageBytes found) const;
    void compareHeader(PageBytes found, JournalTraces &traces) const;

    PageNo m_pagesBefore = 0;
    PageNo m_pagesAfter = 0;
    std::vector<PageWitness> m_witnesses;
    std::map<PageNo, PageRef> m_pages;
    std::map<PageNo, OldPage> m_oldPages;
};

// Offsets and marks in the file, for the class that opens it (journal_file.h).
using JournalMark = std::array<std::uint8_t, 8>;
inline constexpr JournalMark kDurableNameMark{'J', 'R', 'N', 'N', 'A', 'M', 'E', 0};
inline constexpr JournalMark kOldStatementMark{'J', 'E', 'T', 'J', 'R', 'N', '2', 0};
inline constexpr JournalMark kStatementMark{'J', 'E', 'T', 'J', 'R', 'N', '3', 0};
inline constexpr std::uint64_t kStatementOffset = kSectorSize;

/// The path of a database's journal.
std::filesystem::path journalPath(std::filesystem::path database);

/// Detects accidents, not malice: FNV-1a over words of 8 bytes.
std::uint64_t hashBytes(ByteView bytes, std::uint64_t seed = 0xCBF29CE484222325);

/// Writes pages to the database in ascending order, adjacent ones in one call.
void writePages(File &database, std::span<const PageChange> changes);

} // namespace jet
