#pragma once

#include "jet/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace jet
{

/// The bytes in the order of the text form, which is also the sort order; the file stores the first
/// three fields little-endian.
std::array<std::uint8_t, 16> inWrittenOrder(const Guid &guid);

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
std::string toText(const Guid &guid);

/// Parses that form in either case; nullopt for any other text.
std::optional<Guid> parseGuid(std::string_view text);

} // namespace jet
