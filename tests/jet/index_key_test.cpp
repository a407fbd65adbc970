#include "jet/format/index_key.h"
#include "tests/jet/jet_testing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

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
    struct Case {
        Value value;
        ColumnType type;
        const char *ascending;
        const char *descending;
    };
    for (const Case &test : {
             Case{1, ColumnType::Long, "7F 80 00 00 01", "80 7F FF FF FE"},
             Case{-1, ColumnType::Long, "7F 7F FF FF FF", "80 80 00 00 00"},
             Case{Null{}, ColumnType::Long, "00", "FF"},
             Case{Text(u"Tabel"), ColumnType::Text, "7F 6D 4A 4C 51 5E 01 00",
                  "80 92 B5 B3 AE A1 FE FF 00"},
             Case{Text(u"TABEL2  "), ColumnType::Text, "7F 6D 4A 4C 51 5E 3A 01 00",
                  "80 92 B5 B3 AE A1 C5 FE FF 00"},
             Case{Text(u"A-B"), ColumnType::Text, "7F 4A 4C 01 01 01 01 80 0B 06 82 00",
                  "80 B5 B3 FE FE FE FE 7F F4 F9 7D FF 00"},
             Case{Text(u"né"), ColumnType::Text, "7F 62 51 01 02 0E 00", "80 9D AE FE FD F1 FF 00"},
             Case{true, ColumnType::Boolean, "7F 00", "80 FF"},
             Case{Null{}, ColumnType::Boolean, "7F FF", "80 00"},
             Case{Bytes{1, 2}, ColumnType::Binary, "7F 01 02 00 00 00 00 00 00 02",
                  "80 FE FD FF FF FF FF FF FF FD"},
         }) {
        EXPECT_EQ(keyOf(test.value, test.type), hex(test.ascending)) << test.ascending;
        EXPECT_EQ(keyOf(test.value, test.type, false), hex(test.descending)) << test.ascending;
    }
    // the catalogue's entry of a table: parent and name
    const std::vector<Value> values{0x0F000001, Text(u"Tabel")};
    const std::vector<KeyColumn> columns{{ColumnType::Long}, {ColumnType::Text}};
    EXPECT_EQ(encodeIndexKey(values, columns).bytes, hex("7F 8F 00 00 01 7F 6D 4A 4C 51 5E 01 00"));
}

TEST(IndexKey, OrderOfKeysIsOrderOfValues)
{
    const auto guid = [](std::uint8_t first, std::uint8_t fourth) {
        Guid result;
        result.bytes[0] = first;
        result.bytes[3] = fourth;
        return Value(result);
    };
    struct Case {
        ColumnType type;
        std::vector<Value> ascending;
    };
    const std::vector<Case> cases{
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
        {ColumnType::Guid, {guid(9, 0), guid(0, 1), guid(1, 1)}},
        {ColumnType::Text,
         {Null{}, Text(u"_"), Text(u"0"), Text(u"9z"), Text(u"a"), Text(u"ab"), Text(u"coop"),
          Text(u"co-op"), Text(u"né"), Text(u"nea"), Text(u"Z")}},
    };
    for (const Case &test : cases) {
        for (std::size_t i = 0; i + 1 < test.ascending.size(); ++i) {
            const Value &low = test.ascending[i];
            const Value &high = test.ascending[i + 1];
            const auto what = static_cast<int>(test.type);
            EXPECT_LT(keyOf(low, test.type), keyOf(high, test.type)) << what << " at " << i;
            EXPECT_GT(keyOf(low, test.type, false), keyOf(high, test.type, false)) << what;
        }
    }
    EXPECT_LT(keyOf(Numeric{true, {2}, 0}, ColumnType::Numeric),
              keyOf(Numeric{true, {1}, 0}, ColumnType::Numeric));
    EXPECT_LT(keyOf(Numeric{true, {1}, 0}, ColumnType::Numeric),
              keyOf(Numeric{false, {1, 1}, 0}, ColumnType::Numeric));
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
