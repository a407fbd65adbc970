#include "jet/format/header_page.h"

#include "jet/format/table_definition.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numeric>
#include <string_view>
#include <utility>

namespace jet
{
namespace
{

constexpr std::string_view kSignature("Standard Jet DB\0", 16);
constexpr std::size_t kSignatureOffset = 0x04;
constexpr std::size_t kVersionOffset = 0x14;
constexpr std::uint32_t kVersionJet4 = 1;
constexpr std::size_t kMaskOffset = 0x18;
constexpr std::size_t kMaskSize = 128;
constexpr std::size_t kSystemTablesOffset = 0x20;
constexpr std::size_t kCodePageOffset = 0x3C;
constexpr std::size_t kEncodingKeyOffset = 0x3E;
constexpr std::size_t kPasswordOffset = 0x42;
constexpr std::size_t kPasswordSize = 40;
constexpr std::size_t kBuildOffset = 0x6A;
constexpr std::size_t kSortOrderOffset = 0x6E;
constexpr std::size_t kCreationDateOffset = 0x72;
constexpr std::size_t kCommitOffset = 0xE00;

/// The security ids of system_tables.h are encoded with this date.
constexpr std::array<std::uint8_t, 8> kCreationDate{0xBC, 0x72, 0x1F, 0x7D, 0xF1, 0x9F, 0xE2, 0x40};
constexpr std::uint32_t kBuild = 8618; ///< of the last Jet 4 service pack

/// The mask is the start of the RC4 key stream of this key.
std::array<std::uint8_t, kMaskSize> maskStream()
{
    constexpr std::array<std::uint8_t, 4> key{0xC7, 0xDA, 0x39, 0x6B};
    std::array<std::uint8_t, 256> state;
    std::iota(state.begin(), state.end(), std::uint8_t{0});
    for (std::size_t i = 0, j = 0; i < state.size(); ++i) {
        j = (j + state[i] + key[i % key.size()]) % state.size();
        std::swap(state[i], state[j]);
    }
    std::array<std::uint8_t, kMaskSize> stream{};
    std::size_t i = 0;
    std::size_t j = 0;
    for (std::uint8_t &byte : stream) {
        i = (i + 1) % state.size();
        j = (j + state[i]) % state.size();
        std::swap(state[i], state[j]);
        byte = state[(std::size_t{state[i]} + state[j]) % state.size()];
    }
    return stream;
}

/// Masks plain content or unmasks stored content.
void toggleMask(Bytes &page)
{
    const auto stream = maskStream();
    for (std::size_t i = 0; i < kMaskSize; ++i)
        page[kMaskOffset + i] = static_cast<std::uint8_t>(page[kMaskOffset + i] ^ stream[i]);
}

/// The 4 bytes with which the password area is masked once more.
std::uint32_t passwordKey(double creationDate)
{
    if (!std::isfinite(creationDate) || std::abs(creationDate) > 0x7FFFFFFF)
        return 0;
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(creationDate));
}

bool hasPassword(ByteView plain)
{
    const std::uint32_t key = passwordKey(readF64(plain, kCreationDateOffset));
    for (std::size_t i = 0; i < kPasswordSize; i += 4) {
        if (readU32(plain, kPasswordOffset + i) != key)
            return true;
    }
    return false;
}

void checkFormat(PageBytes page)
{
    const bool signature =
        std::equal(kSignature.begin(), kSignature.end(), page.begin() + kSignatureOffset,
                   [](char expected, std::uint8_t byte) {
                       return static_cast<std::uint8_t>(expected) == byte;
                   });
    const std::uint32_t version = readU32(page, kVersionOffset);
    if (page[0] != 0 || page[1] != 1 || !signature || version != kVersionJet4)
        throw Error(ErrorCode::NotADatabase, "Unrecognized database format.");
}

} // namespace

ChangeCounter counterOf(PageBytes headerPage)
{
    return readLittleEndian<ChangeCounter>(headerPage, kChangeCounterOffset);
}

void countChange(MutablePageBytes page, std::uint16_t salt)
{
    const std::uint32_t low = page[kChangeCounterOffset];
    const std::uint32_t high = page[kChangeCounterOffset + 2];
    const std::uint32_t number = ((low | high << 8) + 1) % 0x10000 | std::uint32_t{salt} << 16;
    for (std::size_t i = 0; i < 4; ++i)
        writeU16(page, kChangeCounterOffset + 2 * i,
                 static_cast<std::uint16_t>(0x0100 | ((number >> (8 * i)) & 0xFF)));
}

bool isChangeCounter(ChangeCounter counter)
{
    constexpr ChangeCounter kHighBytes = 0xFF00FF00FF00FF00;
    constexpr ChangeCounter kAtRest = 0x0100010001000100;
    return (counter & kHighBytes) == kAtRest;
}

void checkHeaderPage(PageBytes page)
{
    checkFormat(page);
    Bytes plain(page.begin(), page.end());
    toggleMask(plain);
    if (readU32(plain, kEncodingKeyOffset) != 0)
        throw Error(ErrorCode::NotSupported, "The database is encoded.");
    if (hasPassword(plain))
        throw Error(ErrorCode::PasswordNeeded, "Not a valid password.");
}

Bytes makeHeaderPage()
{
    Bytes page(kPageSize);
    page[1] = 1;
    std::ranges::copy(kSignature, page.begin() + kSignatureOffset);
    writeU32(page, kVersionOffset, kVersionJet4);
    writeRowPointer(page, kMaskOffset, {kGlobalMapPage, 0});
    writeRowPointer(page, kMaskOffset + 4, {kGlobalMapPage, 1});
    for (std::uint32_t table = 0; table < 4; ++table)
        writeU32(page, kSystemTablesOffset + std::size_t{4} * table,
                 kObjectsDefinitionPage + table);
    writeU16(page, kCodePageOffset, 1252);
    writeBytes(page, kCreationDateOffset, kCreationDate);
    const std::uint32_t key = passwordKey(readF64(page, kCreationDateOffset));
    for (std::size_t i = 0; i < kPasswordSize; i += 4)
        writeU32(page, kPasswordOffset + i, key);
    writeU32(page, kBuildOffset, kBuild);
    writeU16(page, kSortOrderOffset, kGeneralSortOrder);
    toggleMask(page);

    constexpr std::uint8_t versionText[] = {0x54, 0x06, 0, 0, '4', '.', '0', 0};
    writeBytes(page, kMaskOffset + kMaskSize, versionText);
    for (std::size_t at = kCommitOffset; at < kPageSize; at += 2)
        page[at + 1] = 1;
    return page;
}

} // namespace jet
