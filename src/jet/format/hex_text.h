#pragma once

#include "jet/format/bytes.h"

#include <string>
#include <string_view>

namespace jet
{

/// Two upper-case digits per byte.
inline std::string hexText(ByteView bytes)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const std::uint8_t byte : bytes) {
        text.push_back(kDigits[byte >> 4]);
        text.push_back(kDigits[byte & 15]);
    }
    return text;
}

} // namespace jet
