#include "jet/utf8.h"

namespace jet
{
namespace
{

constexpr char16_t kReplacement = 0xFFFD;

bool isHighSurrogate(char16_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char16_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void appendUtf8(std::string &out, char32_t code)
{
    const auto continuation = [&out](char32_t bits) {
        out.push_back(static_cast<char>(0x80 | (bits & 0x3F)));
    };
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        out.push_back(static_cast<char>(0xC0 | code >> 6));
        continuation(code);
    } else if (code < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | code >> 12));
        continuation(code >> 6);
        continuation(code);
    } else {
        out.push_back(static_cast<char>(0xF0 | code >> 18));
        continuation(code >> 12);
        continuation(code >> 6);
        continuation(code);
    }
}

/// Decodes the character at `i` and advances past it; a malformed byte is skipped alone.
char32_t nextCodePoint(std::string_view text, std::size_t &i)
{
    const auto byteAt = [&text](std::size_t at) { return static_cast<std::uint8_t>(text[at]); };
    const std::uint8_t lead = byteAt(i++);
    if (lead < 0x80)
        return lead;
    const std::size_t extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead > 0xF4 || extra > text.size() - i)
        return kReplacement;
    char32_t code = lead & (0x3Fu >> extra);
    for (std::size_t k = 0; k < extra; ++k) {
        const std::uint8_t next = byteAt(i + k);
        if ((next & 0xC0) != 0x80)
            return kReplacement;
        code = code << 6 | (next & 0x3Fu);
    }
    constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    if (code < kSmallest[extra] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return kReplacement;
    i += extra;
    return code;
}

} // namespace

std::string toUtf8(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            const char32_t high = unit - 0xD800u;
            const char32_t low = text[++i] - 0xDC00u;
            appendUtf8(out, 0x10000 + (high << 10 | low));
        } else if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
            appendUtf8(out, kReplacement);
        } else {
            appendUtf8(out, unit);
        }
    }
    return out;
}

Text fromUtf8(std::string_view text)
{
    Text out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char32_t code = nextCodePoint(text, i);
        if (code < 0x10000) {
            out.push_back(static_cast<char16_t>(code));
        } else {
            out.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
        }
    }
    return out;
}

} // namespace jet
