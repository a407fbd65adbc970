#pragma once

#include "jet/value.h"

#include <string>
#include <string_view>

namespace jet
{

/// UTF-8 for messages, names on the command line and exports; a lone surrogate becomes U+FFFD.
std::string toUtf8(std::u16string_view text);

/// A malformed sequence becomes U+FFFD.
Text fromUtf8(std::string_view text);

} // namespace jet
