#pragma once

#include "jet/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace jet
{

/// Range of a stored date: 0100-01-01 to the end of 9999-12-31. The fraction is the time of day
/// also before day 0: -1.25 is 1899-12-29 06:00.
inline constexpr double kMinDays = -657435; ///< exclusive
inline constexpr double kMaxDays = 2958466; ///< exclusive

/// False for a number of days outside that range, as a damaged or foreign file may hold.
inline bool isInRange(DateTime moment)
{
    return moment.days > kMinDays && moment.days < kMaxDays;
}

/// "2026-11-21 13:30:00", without the time at midnight, without the date on day 0; rounded to the
/// second. Locale-free. Precondition: isInRange().
std::string toText(DateTime moment);

/// A date, a time or both with a blank or "T" between: year-month-day, day.month.year or
/// day/month/year (two-digit years are 1930 to 2029), hours:minutes with optional seconds. nullopt
/// for any other text or a day that does not exist.
std::optional<DateTime> parseDateTime(std::string_view text);

} // namespace jet
