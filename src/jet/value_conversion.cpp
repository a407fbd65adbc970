#include "jet/value_conversion.h"

#include "jet/format/bytes.h"
#include "jet/format/date_time_text.h"
#include "jet/format/guid.h"
#include "jet/format/numeric.h"
#include "jet/format/value_access.h"
#include "jet/utf8.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace jet
{
namespace
{

constexpr int kDoubleDigits = 15;
constexpr int kSingleDigits = 7;

template <typename Result>
Result valueOrThrow(const std::optional<Result> &result)
{
    if (!result)
        throwTypeConversion();
    return *result;
}

std::string trimmedLower(const Text &text)
{
    std::string utf8 = toUtf8(text);
    const auto first = utf8.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    utf8 = utf8.substr(first, utf8.find_last_not_of(' ') - first + 1);
    std::ranges::transform(utf8, utf8.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return utf8;
}

std::optional<bool> truthWord(const Text &text)
{
    const std::string word = trimmedLower(text);
    if (word == "yes" || word == "true" || word == "on")
        return true;
    if (word == "no" || word == "false" || word == "off")
        return false;
    return std::nullopt;
}

std::string numberText(double number, int significantDigits)
{
    if (number == 0)
        return "0"; // never "-0"
    char text[64];
    const auto end = std::to_chars(std::begin(text), std::end(text), number,
                                   std::chars_format::general, significantDigits);
    std::string result(text, end.ptr);
    std::ranges::replace(result, 'e', 'E');
    return result;
}

/// The number that a value represents; nullopt when it represents none.
struct AsNumber {
    std::optional<double> operator()(bool truth) const { return truth ? -1.0 : 0.0; }
    template <typename Arithmetic>
    requires std::is_arithmetic_v<Arithmetic> std::optional<double>
    operator()(Arithmetic number) const { return static_cast<double>(number); }
    std::optional<double> operator()(Currency amount) const { return toDouble(toNumeric(amount)); }
    std::optional<double> operator()(DateTime moment) const { return moment.days; }
    std::optional<double> operator()(const Numeric &number) const { return toDouble(number); }
    std::optional<double> operator()(const Text &text) const
    {
        std::string digits = trimmedLower(text);
        std::ranges::replace(digits, ',', '.');
        if (digits.starts_with("+-"))
            return std::nullopt;
        const std::string_view view = std::string_view(digits).substr(digits.starts_with('+'));
        double number = 0;
        const auto [end, error] = std::from_chars(view.data(), view.data() + view.size(), number);
        if (error == std::errc::invalid_argument || end != view.data() + view.size())
            return std::nullopt;
        // Underflow gives zero, overflow is refused.
        if (error == std::errc::result_out_of_range && !parseNumeric(digits))
            return std::nullopt;
        return number;
    }
    template <typename Other>
    requires(!std::is_arithmetic_v<Other>) std::optional<double>
    operator()(const Other &) const { return std::nullopt; }
};

double toNumber(const Value &value)
{
    const double number = valueOrThrow(std::visit(AsNumber{}, value));
    if (!std::isfinite(number))
        throwTypeConversion();
    return number;
}

Value toBoolean(const Value &value)
{
    if (const auto *text = std::get_if<Text>(&value)) {
        if (const auto truth = truthWord(*text))
            return *truth;
    }
    return toNumber(value) != 0;
}

/// Rounds half to even, as the default rounding mode does.
template <typename Whole>
Value toWhole(const Value &value)
{
    if (std::is_same_v<Whole, std::uint8_t> && std::holds_alternative<bool>(value))
        return static_cast<Whole>(std::get<bool>(value) ? 0xFF : 0);
    const double rounded = std::nearbyint(toNumber(value));
    if (rounded < static_cast<double>(std::numeric_limits<Whole>::min()) ||
        rounded > static_cast<double>(std::numeric_limits<Whole>::max()))
        throwTypeConversion();
    return static_cast<Whole>(rounded);
}

Value toSingle(const Value &value)
{
    const double number = toNumber(value);
    if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max()))
        throwTypeConversion();
    return static_cast<float>(number);
}

/// Decimal form of a value, exact for texts, Currency and Numeric.
Numeric toDecimal(const Value &value)
{
    if (const auto *amount = std::get_if<Currency>(&value))
        return toNumeric(*amount);
    if (const auto *number = std::get_if<Numeric>(&value))
        return *number;
    if (const auto *text = std::get_if<Text>(&value))
        return valueOrThrow(parseNumeric(toUtf8(*text)));
    return valueOrThrow(parseNumeric(numberText(toNumber(value), kDoubleDigits)));
}

Value toDateTime(const Value &value)
{
    std::optional<DateTime> moment;
    if (const auto *text = std::get_if<Text>(&value))
        moment = parseDateTime(trimmedLower(*text));
    if (!moment)
        moment = DateTime{toNumber(value)};
    if (!isInRange(*moment))
        throwTypeConversion();
    return *moment;
}

Value asText(const Value &value)
{
    if (std::holds_alternative<Bytes>(value))
        throwTypeConversion();
    return std::holds_alternative<Text>(value) ? value : fromUtf8(defaultText(value));
}

Value toBinary(const Value &value, ColumnType type)
{
    const auto &bytes = valueAs<Bytes>(value);
    // Its key would have no end mark: other programs would find the index out of order.
    return type == ColumnType::Binary && bytes.empty() ? Value{} : value;
}

Value toGuid(const Value &value)
{
    if (std::holds_alternative<Guid>(value))
        return value;
    const auto *text = std::get_if<Text>(&value);
    return valueOrThrow(text != nullptr ? parseGuid(trimmedLower(*text)) : std::nullopt);
}

struct AsText {
    std::string operator()(Null) const { return {}; }
    std::string operator()(bool truth) const { return truth ? "-1" : "0"; }
    std::string operator()(std::integral auto number) const { return std::to_string(number); }
    std::string operator()(float number) const
    {
        return numberText(static_cast<double>(number), kSingleDigits);
    }
    std::string operator()(double number) const { return numberText(number, kDoubleDigits); }
    std::string operator()(Currency amount) const { return toText(toNumeric(amount)); }
    std::string operator()(const Numeric &number) const { return toText(number); }
    std::string operator()(DateTime moment) const
    {
        return isInRange(moment) ? toText(moment) : (*this)(moment.days);
    }
    std::string operator()(const Text &text) const { return toUtf8(text); }
    std::string operator()(const Bytes &bytes) const { return hexText(bytes); }
    std::string operator()(const Guid &guid) const { return toText(guid); }
};

} // namespace

Value convertValue(const Value &value, ColumnType type)
{
    if (isNull(value))
        return type == ColumnType::Boolean ? Value{false} : value;
    switch (type) {
    case ColumnType::Boolean:
        return toBoolean(value);
    case ColumnType::Byte:
        return toWhole<std::uint8_t>(value);
    case ColumnType::Integer:
        return toWhole<std::int16_t>(value);
    case ColumnType::Long:
        return toWhole<std::int32_t>(value);
    case ColumnType::Currency:
        return valueOrThrow(toCurrency(toDecimal(value)));
    case ColumnType::Single:
        return toSingle(value);
    case ColumnType::Double:
        return toNumber(value);
    case ColumnType::DateTime:
        return toDateTime(value);
    case ColumnType::Text:
    case ColumnType::Memo:
        return asText(value);
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::Block:
        return toBinary(value, type);
    case ColumnType::Guid:
        return toGuid(value);
    case ColumnType::Numeric:
        return toDecimal(value);
    }
    throwTypeConversion();
}

std::string defaultText(const Value &value)
{
    return std::visit(AsText{}, value);
}

} // namespace jet
