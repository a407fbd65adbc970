#include "jet/format/index_key.h"
#include "tests/jet/jet_testing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <tuple>

namespace jet
{
namespace
{

Bytes keyOf(const Value &value, ColumnType type, bool ascending = true)
{
    const KeyColumn column{.type = type, .ascending = ascending};
    return encodeIndexKey(std::span(&value, 1), std::span(&column, 1)).bytes;
}

} // namespace

TEST(IndexKey, WorkedKeys)
{
    const std::tuple<Value, ColumnType, const char *, const char *> keys[] = {
        {1, ColumnType::Long, "7F 80 00 00 01", "80 7F FF FF FE"},
        {-1, ColumnType::Long, "7F 7F FF FF FF", "80 80 00 00 00"},
        {Null{}, ColumnType::Long, "00", "FF"},
        {Text(u"Tabel"), ColumnType::Text, "7F 6D 4A 4C 51 5E 01 00", "80 92 B5 B3 AE A1 FE FF 00"},
        {Text(u"TABEL2  "), ColumnType::Text, "7F 6D 4A 4C 51 5E 3A 01 00",
         "80 92 B5 B3 AE A1 C5 FE FF 00"},
        {Text(u"A-B"), ColumnType::Text, "7F 4A 4C 01 01 01 01 80 0B 06 82 00",
         "80 B5 B3 FE FE FE FE 7F F4 F9 7D FF 00"},
        {Text(u"né"), ColumnType::Text, "7F 62 51 01 02 0E 00", "80 9D AE FE FD F1 FF 00"},
        {true, ColumnType::Boolean, "7F 00", "80 FF"},
        {Null{}, ColumnType::Boolean, "7F FF", "80 00"},
        {Bytes{1, 2}, ColumnType::Binary, "7F 01 02 00 00 00 00 00 00 02",
         "80 FE FD FF FF FF FF FF FF FD"},
    };
    for (const auto &[value, type, ascending, descending] : keys) {
        EXPECT_EQ(keyOf(value, type), hex(ascending)) << ascending;
        EXPECT_EQ(keyOf(value, type, false), hex(descending)) << ascending;
    }
    // the catalogue's entry of a table: parent and name
    const std::vector<Value> values{0x0F000001, Text(u"Tabel")};
    const std::vector<KeyColumn> columns{{ColumnType::Long}, {ColumnType::Text}};
    EXPECT_EQ(encodeIndexKey(values, columns).bytes, hex("7F 8F 00 00 01 7F 6D 4A 4C 51 5E 01 00"));
}

TEST(IndexKey, OrderOfKeysIsOrderOfValues)
{
    const std::pair<ColumnType, std::vector<Value>> cases[] = {
        {ColumnType::Byte, {Null{}, std::uint8_t{0}, std::uint8_t{1}, std::uint8_t{255}}},
        {ColumnType::Integer, {Null{}, std::int16_t{-32768}, std::int16_t{-1}, std::int16_t{0}}},
        {ColumnType::Long, {std::numeric_limits<std::int32_t>::min(), -5, 0, 5, 70000}},
        {ColumnType::Currency, {Currency{-10001}, Currency{-1}, Currency{0}, Currency{1LL << 40}}},
        {ColumnType::Single, {-1e30f, -1.5f, -0.0f, 0.0f, 1e-30f, 2.0f}},
        {ColumnType::Double, {Null{}, -1e300, -2.0, -1.0, 0.0, 1e-300, 1.0, 1e300}},
        {ColumnType::DateTime, {DateTime{-1.25}, DateTime{0}, DateTime{0.5}, DateTime{46347}}},
        {ColumnType::Boolean, {true, false}},
        {ColumnType::Binary,
         {Bytes{0}, Bytes{0, 0}, Bytes{1}, Bytes(8, 1), Bytes(9, 1), Bytes(17, 1), Bytes{2}}},
        {ColumnType::Guid, {Guid{{9, 0, 0, 0}}, Guid{{0, 0, 0, 1}}, Guid{{1, 0, 0, 1}}}},
        {ColumnType::Numeric,
         {Numeric{true, {2}, 0}, Numeric{true, {1}, 0}, Numeric{false, {1, 1}, 0}}},
        {ColumnType::Text,
         {Null{}, Text(u"_"), Text(u"0"), Text(u"9z"), Text(u"a"), Text(u"ab"), Text(u"coop"),
          Text(u"co-op"), Text(u"né"), Text(u"nea"), Text(u"Z")}},
    };
    for (const auto &[type, ascending] : cases) {
        for (std::size_t i = 0; i + 1 < ascending.size(); ++i) {
            const Value &low = ascending[i];
            const Value &high = ascending[i + 1];
            const auto what = static_cast<int>(type);
            EXPECT_LT(keyOf(low, type), keyOf(high, type)) << what << " at " << i;
            if (type != ColumnType::Numeric) {
                EXPECT_GT(keyOf(low, type, false), keyOf(high, type, false)) << what;
            }
        }
    }
}

TEST(IndexKey, NullsAreKnownForUniqueAndRequiredIndexes)
{
    const std::vector<KeyColumn> columns{{ColumnType::Long}, {ColumnType::Boolean}};
    const auto key = [&](Value a, Value b) {
        return encodeIndexKey(std::vector<Value>{std::move(a), std::move(b)}, columns);
    };
    EXPECT_TRUE(key(Null{}, true).anyNull);
    EXPECT_FALSE(key(Null{}, true).allNull);
    EXPECT_FALSE(key(1, Null{}).anyNull) << "a Boolean is never null";
}

TEST(IndexKey, WhatCannotBeOrderedIsRefused)
{
    const Value text = Text(u"Ω");
    EXPECT_EQ(errorOf([&] { keyOf(text, ColumnType::Text); }), ErrorCode::NotSupported);
    EXPECT_EQ(errorOf([] { keyOf(Bytes{1}, ColumnType::Ole); }), ErrorCode::NotSupported);
    EXPECT_EQ(errorOf([] { keyOf(Numeric{}, ColumnType::Numeric, false); }),
              ErrorCode::NotSupported);
    const KeyColumn sorted{.type = ColumnType::Text, .sortOrder = 0x0418, .inMemory = true};
    const Value last = Text(u"zz");
    EXPECT_GT(encodeIndexKey(std::span(&text, 1), std::span(&sorted, 1)).bytes,
              encodeIndexKey(std::span(&last, 1), std::span(&sorted, 1)).bytes)
        << "sorting in memory refuses nothing";
    const Value ascii = Text(u"a");
    const KeyColumn romanian{.type = ColumnType::Text, .sortOrder = 0x0418};
    EXPECT_EQ(errorOf([&] { encodeIndexKey(std::span(&ascii, 1), std::span(&romanian, 1)); }),
              ErrorCode::NotSupported);
}

} // namespace jet
