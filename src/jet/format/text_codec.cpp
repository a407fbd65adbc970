#include "jet/format/text_codec.h"

#include <algorithm>

namespace jet
{
namespace
{

constexpr std::uint8_t kCompressedMark[] = {0xFF, 0xFE};
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

} // namespace jet
