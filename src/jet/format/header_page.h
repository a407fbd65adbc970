#pragma once

#include "jet/format/page.h"

#include <cstdint>

namespace jet
{

// Page 0. Bytes 0x18..0x97 are masked with a fixed key stream; offsets of the plain content:
//   0x00 00 01 00 00 | 0x04 "Standard Jet DB" | 0x14 u32 version, 1 | 0x18 map of free pages |
//   0x1C second map | 0x20 u32 definition pages of the four system tables | 0x3C u16 code page |
//   0x3E u32 encoding key, 0 | 0x42 40 bytes password | 0x6A u32 build | 0x6E u16 sort order |
//   0x71 u8 sort version | 0x72 f64 creation date | 0x98 "4.0" | 0xE00 256 commit pairs
//
// The database program assigns each of its users a commit pair, u16, at rest 0x0100 or more, and
// increments it so that the others see a change. The last four pairs, which it hardly ever assigns,
// are this engine's change counter: the low bytes of two count the changes, those of the other two
// distinguish copies that were changed equally often; the high bytes stay 1.

inline constexpr PageNo kObjectsDefinitionPage = 2; ///< definition of MSysObjects
/// The header, the global map and the four system tables: never allocated.
inline constexpr PageNo kFirstAllocatablePage = 6;

inline constexpr std::size_t kChangeCounterOffset = 0xFF8;

/// The eight bytes as stored in page 0: they differ after every change of the file.
using ChangeCounter = std::uint64_t;

ChangeCounter counterOf(PageBytes headerPage);
/// Increments the counter in a page 0. `salt` should differ between changes of two copies.
void countChange(MutablePageBytes page, std::uint16_t salt);
/// False for bytes that neither this engine nor the database program writes there.
bool isChangeCounter(ChangeCounter counter);

/// Checks that the engine supports the file of this page 0. Throws Error(NotADatabase),
/// Error(PasswordNeeded), Error(NotSupported) for an encoded file or one of a newer version.
void checkHeaderPage(PageBytes page);

/// Page 0 of a new database. Its creation date is fixed: the security ids in the system tables (see
/// system_tables.h) depend on it.
Bytes makeHeaderPage();

} // namespace jet
