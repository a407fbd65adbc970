#pragma once

#include "jet/format/bytes.h"
#include "jet/format/table_definition.h"

#include <span>
#include <vector>

namespace jet
{

// A table definition: one or more pages of type 2, chained. "Definition bytes" below means the
// first page whole and every further page without its first 8 bytes, one after the other; all
// offsets are offsets there.
//
//   0 page header: u8 2 | u8 1 | u16 free bytes | u32 next page (0 = last)
//   8 u32 length of the definition bytes      41 u16 highest column number ever used + 1
//  12 u32 1625                                43 u16 variable columns
//  16 u32 rows                                45 u16 columns
//  20 u32 last autonumber given               47 u32 logical indexes
//  24 u8 1                                    51 u32 real indexes
//  40 u8 'N' user, 'S' system table           55, 59 row pointers: maps of owned pages, of space
//  63 12 bytes per real index: u32 0 | u32 count of unique entries | u32 0
//     25 per column, names | 52 per real index | 28 per logical index, names |
//     10 per long-value column | u16 FFFF

/// Offsets of the counters; with up to 335 real indexes all of them lie on the first page.
inline constexpr std::size_t kRowCountOffset = 16;
inline constexpr std::size_t kAutonumberOffset = 20;
/// Offset of the count of different keys in a real index.
inline constexpr std::size_t uniqueCountOffset(std::size_t realIndex)
{
    return 63 + 12 * realIndex + 4;
}

/// Throws Error(Damaged) when a count, an offset or a reference between the lists is wrong.
TableDefinition parseTableDefinition(ByteView definition);

/// Definition bytes; the header's "next page" and "free" fields are filled in by
/// splitDefinition().
Bytes encodeTableDefinition(const TableDefinition &table);

/// Pages needed by a definition of this many bytes.
std::size_t definitionPageCount(std::size_t definitionLength);

/// Splits definition bytes into linked pages. `pages`: the page numbers in order,
/// definitionPageCount() of them. Returns one 4096-byte image per page.
std::vector<Bytes> splitDefinition(ByteView definition, std::span<const PageNo> pages);

/// Adds one page of the chain to the definition bytes read so far (empty for the first page) and
/// returns the number of the next page, 0 after the last. Throws Error(Damaged) when the page is
/// no definition page or the chain is longer than the definition says.
PageNo appendDefinitionPage(Bytes &definition, PageBytes page);

} // namespace jet
