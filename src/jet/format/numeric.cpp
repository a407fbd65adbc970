#include "jet/format/numeric.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace jet
{
namespace
{

using Magnitude = std::array<std::uint32_t, 4>;

constexpr std::uint8_t kCurrencyScale = 4;
/// Larger exponents give zero or overflow whatever the digits.
constexpr int kMaxExponent = 400;

/// magnitude * 10 + digit; false when it no longer fits 128 bits.
bool pushDigit(Magnitude &magnitude, std::uint32_t digit)
{
    std::uint64_t carry = digit;
    for (std::uint32_t &word : magnitude) {
        carry += std::uint64_t{word} * 10;
        word = static_cast<std::uint32_t>(carry);
        carry >>= 32;
    }
    return carry == 0;
}

/// Divides by ten in place and returns the remainder.
std::uint32_t popDigit(Magnitude &magnitude)
{
    std::uint64_t remainder = 0;
    for (std::size_t word = magnitude.size(); word-- > 0;) {
        const std::uint64_t part = remainder << 32 | magnitude[word];
        magnitude[word] = static_cast<std::uint32_t>(part / 10);
        remainder = part % 10;
    }
    return static_cast<std::uint32_t>(remainder);
}

bool isZero(const Magnitude &magnitude)
{
    return std::ranges::all_of(magnitude, [](std::uint32_t word) { return word == 0; });
}

void addOne(Magnitude &magnitude)
{
    for (std::uint32_t &word : magnitude) {
        if (++word != 0)
            return;
    }
}

/// All digits, most significant first.
std::string digits(Magnitude magnitude)
{
    std::string text;
    do {
        text.push_back(static_cast<char>('0' + popDigit(magnitude)));
    } while (!isZero(magnitude));
    std::ranges::reverse(text);
    return text;
}

/// Drops the last `count` digits, rounding half to even.
void dropDigits(Magnitude &magnitude, int count)
{
    std::uint32_t last = 0;
    bool restIsZero = true;
    for (int i = 0; i < count; ++i) {
        restIsZero = restIsZero && last == 0;
        last = popDigit(magnitude);
    }
    const bool odd = (magnitude[0] & 1) != 0;
    if (last > 5 || (last == 5 && (!restIsZero || odd)))
        addOne(magnitude);
}

/// digits * 10^-scale for any scale, brought into the range a Numeric has.
std::optional<Numeric> normalised(bool negative, Magnitude magnitude, int scale)
{
    for (; scale < 0; ++scale) {
        if (!isZero(magnitude) && !pushDigit(magnitude, 0))
            return std::nullopt;
    }
    if (scale > kMaxNumericPrecision) {
        dropDigits(magnitude, scale - kMaxNumericPrecision);
        scale = kMaxNumericPrecision;
    }
    Numeric number{negative && !isZero(magnitude), magnitude, static_cast<std::uint8_t>(scale)};
    if (const int excess = static_cast<int>(digitCount(number)) - kMaxNumericPrecision;
        excess > 0) {
        if (excess > scale)
            return std::nullopt;
        dropDigits(number.magnitude, excess);
        number.scale = static_cast<std::uint8_t>(scale - excess);
    }
    return number;
}

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// The number after "e" or "E", clamped to just beyond kMaxExponent; nullopt when malformed.
std::optional<int> parseExponent(std::string_view text)
{
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    unsigned exponent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error == std::errc::invalid_argument || end != text.data() + text.size())
        return std::nullopt;
    if (error == std::errc::result_out_of_range || exponent > kMaxExponent)
        exponent = kMaxExponent + 1;
    return negative ? -static_cast<int>(exponent) : static_cast<int>(exponent);
}

} // namespace

std::optional<Numeric> parseNumeric(std::string_view text)
{
    text = trimmed(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);

    Magnitude magnitude{};
    int scale = 0;
    bool separatorSeen = false;
    bool digitSeen = false;
    std::size_t i = 0;
    for (; i < text.size() && text[i] != 'e' && text[i] != 'E'; ++i) {
        if ((text[i] == '.' || text[i] == ',') && !separatorSeen) {
            separatorSeen = true;
            continue;
        }
        if (text[i] < '0' || text[i] > '9')
            return std::nullopt;
        digitSeen = true;
        // digits beyond 128 bits are zeros or decimals that cannot be stored
        Magnitude longer = magnitude;
        if (pushDigit(longer, static_cast<std::uint32_t>(text[i] - '0'))) {
            magnitude = longer;
            scale += separatorSeen ? 1 : 0;
        } else if (!separatorSeen) {
            return std::nullopt;
        }
    }
    if (!digitSeen)
        return std::nullopt;
    if (i < text.size()) {
        const auto exponent = parseExponent(text.substr(i + 1));
        if (!exponent)
            return std::nullopt;
        if (isZero(magnitude) || *exponent < -kMaxExponent)
            return Numeric{};
        if (*exponent > kMaxExponent)
            return std::nullopt;
        scale -= *exponent;
    }
    return normalised(negative, magnitude, scale);
}

std::optional<Numeric> withScale(const Numeric &number, std::uint8_t scale)
{
    Numeric result = number;
    for (; result.scale < scale; ++result.scale) {
        if (!pushDigit(result.magnitude, 0))
            return std::nullopt;
    }
    if (result.scale > scale) {
        dropDigits(result.magnitude, result.scale - scale);
        result.scale = scale;
    }
    if (digitCount(result) > kMaxNumericPrecision)
        return std::nullopt;
    result.negative = result.negative && !isZero(result.magnitude);
    return result;
}

std::size_t digitCount(const Numeric &number)
{
    return digits(number.magnitude).size();
}

std::string toText(const Numeric &number)
{
    std::string text = digits(number.magnitude);
    if (text.size() <= number.scale)
        text.insert(0, number.scale - text.size() + 1, '0');
    if (number.scale > 0) {
        text.insert(text.size() - number.scale, 1, '.');
        text.erase(text.find_last_not_of('0') + 1);
        if (text.ends_with('.'))
            text.pop_back();
    }
    return number.negative ? "-" + text : text;
}

double toDouble(const Numeric &number)
{
    const std::string text = toText(number);
    double result = 0;
    std::from_chars(text.data(), text.data() + text.size(), result);
    return result;
}

std::optional<Currency> toCurrency(const Numeric &number)
{
    const auto scaled = withScale(number, kCurrencyScale);
    if (!scaled || scaled->magnitude[2] != 0 || scaled->magnitude[3] != 0)
        return std::nullopt;
    const std::uint64_t magnitude =
        std::uint64_t{scaled->magnitude[1]} << 32 | scaled->magnitude[0];
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (magnitude > largest + (scaled->negative ? 1 : 0))
        return std::nullopt;
    return Currency{static_cast<std::int64_t>(scaled->negative ? 0 - magnitude : magnitude)};
}

Numeric toNumeric(Currency amount)
{
    const auto bits = static_cast<std::uint64_t>(amount.tenThousandths);
    const std::uint64_t magnitude = amount.tenThousandths < 0 ? 0 - bits : bits;
    return {
        amount.tenThousandths < 0,
        {static_cast<std::uint32_t>(magnitude), static_cast<std::uint32_t>(magnitude >> 32), 0, 0},
        kCurrencyScale};
}

} // namespace jet
