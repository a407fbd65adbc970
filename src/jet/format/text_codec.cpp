#include "jet/format/text_codec.h"

#include <algorithm>

namespace jet
{
namespace
{

constexpr std::uint8_t kCompressedMark[] = {0xFF, 0xFE};
constexpr char16_t kReplacement = 0xFFFD;

bool isCompressed(ByteView stored)
{
    return stored.size() >= 2 && stored[0] == kCompressedMark[0] && stored[1] == kCompressedMark[1];
}

Text decompress(ByteView packed)
{
    Text text;
    text.reserve(packed.size());
    bool oneBytePerCharacter = true;
    for (std::size_t i = 0; i < packed.size();) {
        if (packed[i] == 0) {
            oneBytePerCharacter = !oneBytePerCharacter;
            ++i;
        } else if (oneBytePerCharacter) {
            text.push_back(packed[i++]);
        } else {
            text.push_back(static_cast<char16_t>(readU16(packed, i)));
            i += 2;
        }
    }
    return text;
}

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

/// Reads one character at `i` and moves behind it; a malformed byte is skipped alone.
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

Text decodeText(ByteView stored)
{
    if (isCompressed(stored))
        return decompress(stored.subspan(2));
    if (stored.size() % 2 != 0)
        throwDamaged("a text ends inside a character");
    Text text(stored.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>(stored[2 * i] | stored[2 * i + 1] << 8);
    return text;
}

Bytes encodeText(std::u16string_view text, bool compressible)
{
    while (text.starts_with(u'\uFEFF'))
        text.remove_prefix(1);
    const auto fitsOneByte = [](char16_t unit) { return unit >= 0x01 && unit <= 0xFF; };
    Bytes stored;
    if (compressible && text.size() >= 3 && std::ranges::all_of(text, fitsOneByte)) {
        stored.assign(std::begin(kCompressedMark), std::end(kCompressedMark));
        for (const char16_t unit : text)
            stored.push_back(static_cast<std::uint8_t>(unit));
        return stored;
    }
    stored.reserve(2 * text.size());
    for (const char16_t unit : text)
        appendLittleEndian<2>(stored, unit);
    return stored;
}

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
