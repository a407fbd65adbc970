#pragma once

#include "jet/error.h"

#include <compare>
#include <cstdint>

namespace jet
{

/// Place of a row: page and slot. All zero means "none".
struct RowPointer {
    PageNo page = 0;
    std::uint8_t row = 0;
    auto operator<=>(const RowPointer &) const = default;
    bool isNone() const { return page == 0 && row == 0; }
};

} // namespace jet
