#include "jet/format/guid.h"

#include "jet/format/bytes.h"

#include <charconv>

namespace jet
{
namespace
{

/// Places in the file of the bytes of the written form.
constexpr std::array<std::size_t, 16> kWrittenOrder{3, 2, 1,  0,  5,  4,  7,  6,
                                                    8, 9, 10, 11, 12, 13, 14, 15};
constexpr std::string_view kPattern = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";

} // namespace

std::array<std::uint8_t, 16> inWrittenOrder(const Guid &guid)
{
    std::array<std::uint8_t, 16> written{};
    for (std::size_t i = 0; i < written.size(); ++i)
        written[i] = guid.bytes[kWrittenOrder[i]];
    return written;
}

std::string toText(const Guid &guid)
{
    const std::string digits = hexText(inWrittenOrder(guid));
    std::string text(kPattern);
    std::size_t next = 0;
    for (char &c : text) {
        if (c == 'x')
            c = digits[next++];
    }
    return text;
}

std::optional<Guid> parseGuid(std::string_view text)
{
    if (text.size() != kPattern.size())
        return std::nullopt;
    std::string digits;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (kPattern[i] == 'x')
            digits.push_back(text[i]);
        else if (text[i] != kPattern[i])
            return std::nullopt;
    }
    Guid guid;
    for (std::size_t i = 0; i < guid.bytes.size(); ++i) {
        const char *const at = digits.data() + 2 * i;
        const auto [end, error] = std::from_chars(at, at + 2, guid.bytes[kWrittenOrder[i]], 16);
        if (error != std::errc{} || end != at + 2)
            return std::nullopt;
    }
    return guid;
}

} // namespace jet
