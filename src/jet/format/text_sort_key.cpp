#include "jet/format/index_key.h"

#include <algorithm>
#include <array>
#include <optional>

namespace jet
{
namespace
{

constexpr std::size_t kMaxKeyCharacters = 255;
constexpr std::uint8_t kEndOfSection = 0x01;
constexpr std::uint8_t kEndOfText = 0x00;
constexpr std::uint8_t kNoAccent = 0x02;
constexpr std::uint32_t kAfterAllLetters = 0x790000;

/// What one character adds to the three sections of a key.
struct CharacterKey {
    std::uint32_t letter = 0; ///< one to three bytes without leading zeros; 0 = nothing
    std::uint8_t accent = 0;  ///< 0 = none
    std::uint8_t special = 0; ///< sorts only among texts that are otherwise equal; 0 = none
};

/// Letter codes of U+0020..U+007E; 0 = special. Most have one byte; 2Bxx are two.
constexpr std::array<std::uint16_t, 0x5F> kAsciiLetters{
    // clang-format off
    0x07, 0x09, 0x0A, 0x0C, 0x0E, 0x10, 0x12, 0,    0x14, 0x16, 0x18, 0x2C, 0x1A, 0,      0x1C,   0x1E,
    0x36, 0x38, 0x3A, 0x3C, 0x3E, 0x40, 0x42, 0x44, 0x46, 0x48, 0x20, 0x22, 0x2E, 0x30,   0x32,   0x24,
    0x26, 0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59, 0x5B, 0x5C, 0x5E, 0x60,   0x62,   0x64,
    0x66, 0x68, 0x69, 0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78, 0x27, 0x29, 0x2A,   0x2B02, 0x2B03,
    0x2B07, 0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59, 0x5B, 0x5C, 0x5E, 0x60, 0x62,   0x64,
    0x66, 0x68, 0x69, 0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78, 0x2B09, 0x2B0B, 0x2B0D, 0x2B0F,
    // clang-format on
};

struct AccentedLetter {
    char16_t upper;
    char16_t lower;
    char16_t base;
    std::uint8_t accent;
};

constexpr AccentedLetter kAccentedLetters[] = {
    {u'À', u'à', u'A', 0x0F}, {u'Á', u'á', u'A', 0x0E}, {u'Â', u'â', u'A', 0x12},
    {u'Ã', u'ã', u'A', 0x19}, {u'Ä', u'ä', u'A', 0x13}, {u'Å', u'å', u'A', 0x1A},
    {u'Ă', u'ă', u'A', 0x15}, {u'Ç', u'ç', u'C', 0x1C}, {u'È', u'è', u'E', 0x0F},
    {u'É', u'é', u'E', 0x0E}, {u'Ê', u'ê', u'E', 0x12}, {u'Ë', u'ë', u'E', 0x13},
    {u'Í', u'í', u'I', 0x0E}, {u'Î', u'î', u'I', 0x12}, {u'Ñ', u'ñ', u'N', 0x19},
    {u'Ó', u'ó', u'O', 0x0E}, {u'Ô', u'ô', u'O', 0x12}, {u'Ö', u'ö', u'O', 0x13},
    {u'Ş', u'ş', u'S', 0x1C}, {u'Ţ', u'ţ', u'T', 0x1C}, {u'Ú', u'ú', u'U', 0x0E},
    {u'Ü', u'ü', u'U', 0x13},
};

/// The comma-below letters are younger than this sort order, which ignores them.
constexpr bool isIgnored(char16_t unit)
{
    return unit == u'\0' || (unit >= u'\u0218' && unit <= u'\u021B');
}

std::uint16_t asciiLetter(char16_t unit)
{
    return kAsciiLetters[static_cast<std::size_t>(unit - u' ')];
}

std::optional<CharacterKey> controlKey(char16_t unit)
{
    const auto code = static_cast<std::uint8_t>(unit);
    if (unit >= 0x01 && unit <= 0x08)
        return CharacterKey{.special = static_cast<std::uint8_t>(code + 2)};
    if (unit >= 0x09 && unit <= 0x0D)
        return CharacterKey{.letter = 0x0800u | (code - 6u)};
    if (unit >= 0x0E && unit <= 0x1F)
        return CharacterKey{.special = static_cast<std::uint8_t>(code - 3)};
    if (unit == 0x7F)
        return CharacterKey{.special = 0x1D};
    return std::nullopt;
}

CharacterKey characterKey(char16_t unit, bool sortUnknown)
{
    if (unit == u'\'')
        return {.special = 0x80};
    if (unit == u'-')
        return {.special = 0x82};
    if (unit >= u' ' && unit <= u'~')
        return {.letter = asciiLetter(unit)};
    if (const auto control = controlKey(unit))
        return *control;
    if (isIgnored(unit))
        return {};
    for (const AccentedLetter &letter : kAccentedLetters) {
        if (unit == letter.upper || unit == letter.lower)
            return {.letter = asciiLetter(letter.base), .accent = letter.accent};
    }
    if (sortUnknown)
        return {.letter = kAfterAllLetters | unit};
    throw Error(ErrorCode::NotSupported,
                "The text has a character whose place in the sort order is not known.");
}

std::u16string_view keyCharacters(std::u16string_view text)
{
    text = text.substr(0, kMaxKeyCharacters);
    while (text.ends_with(u' '))
        text.remove_suffix(1);
    return text;
}

void appendLetter(Bytes &key, std::uint32_t letter)
{
    if (letter > 0xFFFF)
        key.push_back(static_cast<std::uint8_t>(letter >> 16));
    if (letter > 0xFF)
        key.push_back(static_cast<std::uint8_t>(letter >> 8));
    key.push_back(static_cast<std::uint8_t>(letter));
}

void appendSpecial(Bytes &specials, std::size_t lettersBefore, std::uint8_t code)
{
    appendBigEndian<2>(specials, 0x8000 | (7 + 4 * lettersBefore));
    specials.push_back(0x06);
    specials.push_back(code);
}

} // namespace

Bytes generalSortKey(std::u16string_view text, bool sortUnknown)
{
    Bytes key;
    Bytes accents;
    Bytes specials;
    for (const char16_t unit : keyCharacters(text)) {
        const CharacterKey character = characterKey(unit, sortUnknown);
        if (character.special != 0)
            appendSpecial(specials, accents.size(), character.special);
        if (character.letter == 0)
            continue;
        appendLetter(key, character.letter);
        accents.push_back(character.accent == 0 ? kNoAccent : character.accent);
    }
    while (!accents.empty() && accents.back() == kNoAccent)
        accents.pop_back();

    key.push_back(kEndOfSection);
    appendBytes(key, accents);
    if (!specials.empty()) {
        key.insert(key.end(), 3, kEndOfSection);
        appendBytes(key, specials);
    }
    key.push_back(kEndOfText);
    return key;
}

bool sameName(std::u16string_view left, std::u16string_view right)
{
    if (left == right)
        return true;
    try {
        return generalSortKey(left) == generalSortKey(right);
    } catch (const Error &) {
        return false; // letters outside the known part of the order are only equal to themselves
    }
}

} // namespace jet
