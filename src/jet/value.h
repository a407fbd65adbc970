#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace jet
{

/// Column types by the code that stands in the table definition.
enum class ColumnType : std::uint8_t {
    Boolean = 1,
    Byte = 2,
    Integer = 3, ///< 16 bits, signed
    Long = 4,    ///< 32 bits, signed
    Currency = 5,
    Single = 6,
    Double = 7,
    DateTime = 8,
    Binary = 9,
    Text = 10,
    Ole = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
    /// 3992 bytes of what the database program keeps of its forms and modules in its own tables.
    Block = 17,
};

/// Money in ten-thousandths: 12345 is 1.2345.
struct Currency {
    std::int64_t tenThousandths = 0;
    auto operator<=>(const Currency &) const = default;
};

/// Days since 1899-12-30 00:00 local wall-clock time; the fraction is the time of day.
struct DateTime {
    double days = 0;
    auto operator<=>(const DateTime &) const = default;
};

/// The 16 bytes in file order.
struct Guid {
    std::array<std::uint8_t, 16> bytes{};
    auto operator<=>(const Guid &) const = default;
};

/// Decimal number: magnitude (four 32-bit words, least significant first) / 10^scale.
struct Numeric {
    bool negative = false;
    std::array<std::uint32_t, 4> magnitude{};
    std::uint8_t scale = 0;
    bool operator==(const Numeric &) const = default;
};

using Null = std::monostate;
/// Text is UTF-16, the file's own form, so that nothing is lost on the way through.
using Text = std::u16string;
using Bytes = std::vector<std::uint8_t>;

/// The value of one column of one row. Memo reads as Text; Binary, OLE and Block read as Bytes.
using Value = std::variant<Null, bool, std::uint8_t, std::int16_t, std::int32_t, Currency, float,
                           double, DateTime, Text, Bytes, Guid, Numeric>;

/// The values of a record, in the order of its table's columns.
using Row = std::vector<Value>;

/// Values for columns named in any order.
using Assignments = std::vector<std::pair<Text, Value>>;

inline bool isNull(const Value &value)
{
    return std::holds_alternative<Null>(value);
}

} // namespace jet
