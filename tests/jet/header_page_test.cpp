#include "jet/format/header_page.h"
#include "tests/jet/jet_testing.h"

#include <gtest/gtest.h>

#include <tuple>

namespace jet
{

TEST(HeaderPage, IsTheOneOfTheDatabaseProgram)
{
    const Bytes expected = hex("00 01 00 00 53 74 61 6E 64 61 72 64 20 4A 65 74"
                               " 20 44 42 00 01 00 00 00 B5 6E 03 62 60 09 C2 55"
                               " E9 A9 67 72 40 3F 00 9C 7E 9F 90 FF 85 9A 31 C5"
                               " 79 BA ED 30 BC DF CC 9D 63 D9 E4 C3 9F 46 FB 8A"
                               " BC 4E 79 6F EC 37 A2 D0 9C FA 39 CA 28 E6 EC 22"
                               " 8A 60 AB 00 7B 36 0A E6 DF B1 88 60 13 43 30 3B"
                               " B1 33 CB F5 79 5B 6D 21 7C 2A AF D0 7C 99 08 1F"
                               " 98 FD AE 3D 55 E9 9D A1 82 66 5F 95 F8 D0 89 24"
                               " 85 67 C6 1F 27 44 D2 EE CF 65 ED FF 07 C7 46 A1"
                               " 78 16 0C ED E9 2D 62 D4 54 06 00 00 34 2E 30 00");
    const Bytes page = makeHeaderPage();
    ASSERT_EQ(page.size(), kPageSize);
    EXPECT_EQ(Bytes(page.begin(), page.begin() + 0xA0), expected);
    EXPECT_EQ(Bytes(page.begin() + 0xDFE, page.begin() + 0xE04), hex("00 00 00 01 00 01"));

    const HeaderInfo info = readHeaderPage(PageBytes(page));
    EXPECT_EQ(info.codePage, 1252);
    EXPECT_EQ(info.sortOrder, kGeneralSortOrder);
}

TEST(HeaderPage, RefusesWhatItCannotRead)
{
    const std::tuple<std::size_t, int, ErrorCode> changes[] = {
        {0x05, 1, ErrorCode::NotADatabase},   // signature
        {0x14, 1, ErrorCode::NotADatabase},   // version 0: Jet 3
        {0x14, 3, ErrorCode::NotADatabase},   // version 2: newer
        {0x00, 1, ErrorCode::NotADatabase},   // page type
        {0x3E, 1, ErrorCode::NotSupported},   // encoded pages
        {0x42, 1, ErrorCode::PasswordNeeded}, // first character
        {0x69, 1, ErrorCode::PasswordNeeded}, // last byte
    };
    for (const auto &[offset, toggled, expected] : changes) {
        Bytes page = makeHeaderPage();
        page[offset] = static_cast<std::uint8_t>(page[offset] ^ toggled);
        EXPECT_EQ(errorOf([&] { readHeaderPage(PageBytes(page)); }), expected) << offset;
    }
}

} // namespace jet
