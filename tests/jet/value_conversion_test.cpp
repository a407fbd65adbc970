#include "jet/format/column_value.h"
#include "jet/utf8.h"
#include "jet/value_conversion.h"
#include "tests/jet/jet_testing.h"

#include <gtest/gtest.h>

#include <limits>

namespace jet
{
namespace
{

ColumnDefinition columnOf(ColumnType type)
{
    ColumnDefinition result = column(u"c", type, type == ColumnType::Text ? 20 : 0);
    result.precision = 6;
    result.scale = 2;
    return result;
}

std::string textOf(const Value &value)
{
    return defaultText(value) + " as alternative " + std::to_string(value.index());
}

} // namespace

TEST(ValueConversion, AssignsAsDaoDoesAndRefusesWhatTheColumnCannotHold)
{
    struct Case {
        Value assigned;
        ColumnType type;
        Value stored;
        std::optional<ErrorCode> error = std::nullopt;
    };
    constexpr ErrorCode kRefused = ErrorCode::TypeConversion;
    const auto text = [](const char *utf8) { return Value(fromUtf8(utf8)); };
    const auto numeric = [](std::uint32_t hundredths, bool negative = false) {
        return Value(Numeric{negative, {hundredths}, 2});
    };
    using enum ColumnType;
    using Cur = jet::Currency;
    using Date = jet::DateTime;
    for (const Case &test : std::initializer_list<Case>{
             {text("Yes"), Boolean, true},
             {text(" on "), Boolean, true},
             {text("FALSE"), Boolean, false},
             {text("-1"), Boolean, true},
             {0.0, Boolean, false},
             {Null{}, Boolean, false},
             {Null{}, Long, Null{}},
             {1.5, Long, 2},
             {2.5, Long, 2},
             {-2.5, Integer, std::int16_t{-2}},
             {text("12,5"), Long, 12},
             {true, Integer, std::int16_t{-1}},
             {true, Byte, std::uint8_t{255}},
             {255.4, Byte, std::uint8_t{255}},
             {Cur{25000}, Long, 2},
             {text("121.5"), Double, 121.5},
             {Date{46347.5}, Double, 46347.5},
             {7, Single, 7.0f},
             {0.1, ColumnType::Text, text("0.1")},
             {1e15, ColumnType::Text, text("1E+15")},
             {1.0 / 3, Memo, text("0.333333333333333")},
             {-0.0, ColumnType::Text, text("0")},
             {0.1f, ColumnType::Text, text("0.1")},
             {Cur{-12500}, ColumnType::Text, text("-1.25")},
             {Date{46347}, ColumnType::Text, text("2026-11-21")},
             {Date{0.5625}, ColumnType::Text, text("13:30:00")},
             {Date{46347.5625}, Memo, text("2026-11-21 13:30:00")},
             {Date{1e300}, Memo, text("1E+300")},
             {Date{-1.25}, Memo, text("1899-12-29 06:00:00")},
             {Date{-657434.5}, Memo, text("0100-01-01 12:00:00")},
             {text("2026-11-21"), ColumnType::DateTime, Date{46347}},
             {text("21.11.2026 13:30"), ColumnType::DateTime, Date{46347.5625}},
             {text("21/11/26"), ColumnType::DateTime, Date{46347}},
             {text("13:30:00"), ColumnType::DateTime, Date{0.5625}},
             {text("46347.25"), ColumnType::DateTime, Date{46347.25}},
             {1, ColumnType::DateTime, Date{1}},
             {text("922337203685477.5807"), ColumnType::Currency,
              Cur{std::numeric_limits<std::int64_t>::max()}},
             {0.00005, ColumnType::Currency, Cur{0}},
             {text("-0,00015"), ColumnType::Currency, Cur{-2}},
             {text("1e-2147483648"), ColumnType::Currency, Cur{0}},
             {text("0e99999999999"), ColumnType::Currency, Cur{0}},
             {text("1e-401"), Double, 0.0},
             {text("1234.565"), ColumnType::Numeric, numeric(123456)},
             {-1.239, ColumnType::Numeric, numeric(124, true)},
             {Bytes{}, Ole, Bytes{}},
             {Bytes{}, ColumnType::Binary, Null{}},
             {text("{00112233-4455-6677-8899-aabbccddeeff}"), ColumnType::Guid,
              jet::Guid{{0x33, 0x22, 0x11, 0, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC,
                         0xDD, 0xEE, 0xFF}}},
             {text("maybe"), ColumnType::Boolean, {}, kRefused},
             {text(""), ColumnType::Long, {}, kRefused},
             {text("12 V"), ColumnType::Double, {}, kRefused},
             {text("1.2.3"), ColumnType::Currency, {}, kRefused},
             {text("inf"), ColumnType::Double, {}, kRefused},
             {text("1e401"), ColumnType::Double, {}, kRefused},
             {text("+-5"), ColumnType::Double, {}, kRefused},
             {text("1e+-5"), ColumnType::Currency, {}, kRefused},
             {text("1e401"), ColumnType::Currency, {}, kRefused},
             {255.5, ColumnType::Byte, {}, kRefused},
             {-1, ColumnType::Byte, {}, kRefused},
             {32768, ColumnType::Integer, {}, kRefused},
             {2147483647.5, ColumnType::Long, {}, kRefused},
             {1e39, ColumnType::Single, {}, kRefused},
             {std::numeric_limits<double>::quiet_NaN(), ColumnType::Double, {}, kRefused},
             {1e15, ColumnType::Currency, {}, kRefused},
             {10000, ColumnType::Numeric, {}, kRefused},
             {text("1E30"), ColumnType::Numeric, {}, kRefused},
             {text("30.02.2026"), ColumnType::DateTime, {}, kRefused},
             {text("24:00"), ColumnType::DateTime, {}, kRefused},
             {3e6, ColumnType::DateTime, {}, kRefused},
             {-657435.0, ColumnType::DateTime, {}, kRefused},
             {text("{00112233}"), ColumnType::Guid, {}, kRefused},
             {Bytes{1}, ColumnType::Text, {}, kRefused},
             {text("x"), ColumnType::Ole, {}, kRefused},
             {text("eleven char"), ColumnType::Text, {}, ErrorCode::ValueTooLong},
             {Bytes{1}, ColumnType::Binary, {}, ErrorCode::ValueTooLong},
         }) {
        Value stored;
        const auto error =
            errorOf([&] { stored = columnValue(test.assigned, columnOf(test.type)); });
        EXPECT_EQ(error, test.error) << textOf(test.assigned);
        EXPECT_EQ(stored, test.stored) << textOf(test.assigned) << " became " << textOf(stored);
    }
}

} // namespace jet
