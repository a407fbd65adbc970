#include "jet/format/date_time_text.h"

#include <array>
#include <cassert>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace jet
{
namespace
{

using namespace std::chrono;

constexpr sys_days kDayZero = year{1899} / December / 30;
constexpr std::int64_t kSecondsPerDay = 86400;

/// Numbers of a text like "21.11.2026", split at one kind of separator.
struct Fields {
    std::array<int, 3> numbers{};
    std::array<std::size_t, 3> widths{};
    std::size_t count = 0;
};

std::optional<Fields> splitFields(std::string_view text, char separator)
{
    Fields fields;
    const char *at = text.data();
    const char *const end = at + text.size();
    while (fields.count < fields.numbers.size()) {
        if (at == end || *at < '0' || *at > '9')
            return std::nullopt;
        const auto [next, error] = std::from_chars(at, end, fields.numbers[fields.count]);
        if (error != std::errc{})
            return std::nullopt;
        fields.widths[fields.count++] = static_cast<std::size_t>(next - at);
        if (next == end)
            return fields;
        if (*next != separator)
            return std::nullopt;
        at = next + 1;
    }
    return std::nullopt;
}

int fullYear(int number, std::size_t width)
{
    if (width > 2)
        return number;
    return number < 30 ? 2000 + number : 1900 + number;
}

std::optional<double> daysOf(int yearNumber, int monthNumber, int dayNumber)
{
    if (yearNumber < 100 || yearNumber > 9999 || monthNumber > 12 || dayNumber > 31)
        return std::nullopt;
    const year_month_day date{year{yearNumber}, month{static_cast<unsigned>(monthNumber)},
                              day{static_cast<unsigned>(dayNumber)}};
    if (!date.ok())
        return std::nullopt;
    return static_cast<double>((sys_days{date} - kDayZero).count());
}

std::optional<double> parseDate(std::string_view text)
{
    if (const auto iso = splitFields(text, '-'); iso && iso->count == 3 && iso->widths[0] > 2)
        return daysOf(iso->numbers[0], iso->numbers[1], iso->numbers[2]);
    for (const char separator : {'.', '/', '-'}) {
        const auto fields = splitFields(text, separator);
        if (fields && fields->count == 3)
            return daysOf(fullYear(fields->numbers[2], fields->widths[2]), fields->numbers[1],
                          fields->numbers[0]);
    }
    return std::nullopt;
}

std::optional<double> parseTime(std::string_view text)
{
    const auto fields = splitFields(text, ':');
    if (!fields || fields->count < 2)
        return std::nullopt;
    const auto [hours, minutes, seconds] = fields->numbers;
    if (hours > 23 || minutes > 59 || seconds > 59)
        return std::nullopt;
    return (hours * 3600 + minutes * 60 + seconds) / static_cast<double>(kSecondsPerDay);
}

} // namespace

std::string toText(DateTime moment)
{
    assert(isInRange(moment));
    // the fraction counts forward from the day's midnight even before day 0
    double wholeDays = std::trunc(moment.days);
    auto seconds = std::llround(std::abs(moment.days - wholeDays) * kSecondsPerDay);
    if (seconds == kSecondsPerDay) {
        wholeDays += 1;
        seconds = 0;
    }
    std::array<char, 64> text{};
    std::string result;
    if (wholeDays != 0 || seconds == 0) {
        const year_month_day date{kDayZero + days{static_cast<int>(wholeDays)}};
        std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
        result = text.data();
    }
    if (seconds != 0) {
        const auto clock = static_cast<int>(seconds);
        std::snprintf(text.data(), text.size(), "%02d:%02d:%02d", clock / 3600, clock / 60 % 60,
                      clock % 60);
        result += (result.empty() ? "" : " ") + std::string(text.data());
    }
    return result;
}

std::optional<DateTime> parseDateTime(std::string_view text)
{
    if (const auto time = parseTime(text))
        return DateTime{*time};
    const auto gap = text.find_first_of(" tT");
    const auto date = parseDate(text.substr(0, gap));
    if (!date || gap == std::string_view::npos)
        return date ? std::optional(DateTime{*date}) : std::nullopt;
    const auto time = parseTime(text.substr(gap + 1));
    if (!time)
        return std::nullopt;
    return DateTime{*date < 0 ? *date - *time : *date + *time};
}

} // namespace jet
