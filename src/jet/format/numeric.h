#pragma once

#include "jet/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace jet
{

/// The most digits and the largest scale of a Numeric, as in the database program.
inline constexpr std::uint8_t kMaxNumericPrecision = 28;

/// Parses a decimal number exactly: sign, digits with "." or "," as the separator, exponent, blanks
/// around it. nullopt for any other text or more than 28 digits before the point.
std::optional<Numeric> parseNumeric(std::string_view text);

/// The number with another scale, rounded half to even; nullopt when it exceeds 28 digits.
std::optional<Numeric> withScale(const Numeric &number, std::uint8_t scale);

/// Decimal digits of the magnitude; 1 for zero.
std::size_t digitCount(const Numeric &number);

/// Plain digits with ".", without trailing zeros after it.
std::string toText(const Numeric &number);

double toDouble(const Numeric &number);

/// Money with exactly four digits after the point; nullopt when out of range.
std::optional<Currency> toCurrency(const Numeric &number);
Numeric toNumeric(Currency amount);

} // namespace jet
