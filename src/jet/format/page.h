#pragma once

#include "jet/format/bytes.h"

#include <array>
#include <memory>

namespace jet
{

/// The content of one page.
using PageBuffer = std::array<std::uint8_t, kPageSize>;

/// Keeps a page's content alive after the cache has evicted it.
using PageRef = std::shared_ptr<const PageBuffer>;

/// The pages with a fixed number.
inline constexpr PageNo kHeaderPage = 0;
inline constexpr PageNo kGlobalMapPage = 1;

/// First byte of a page.
enum class PageType : std::uint8_t {
    Header = 0,
    Data = 1,
    TableDefinition = 2,
    IndexNode = 3,
    IndexLeaf = 4,
    UsageBitmap = 5,
};

/// Of a page that starts with these bytes.
inline bool hasType(ByteView start, PageType type)
{
    return start[0] == static_cast<std::uint8_t>(type) && start[1] == 1;
}

inline std::uint64_t fileOffset(PageNo page)
{
    return std::uint64_t{page} * kPageSize;
}

} // namespace jet
