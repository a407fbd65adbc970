#pragma once

#include "jet/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace jet
{

/// The bytes in the order of the written form, which is also their sort order: the file keeps the
/// first three fields little-endian.
std::array<std::uint8_t, 16> inWrittenOrder(const Guid &guid);

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
std::string toText(const Guid &guid);

/// Reads that form in either case; nothing for any other text.
std::optional<Guid> parseGuid(std::string_view text);

} // namespace jet
