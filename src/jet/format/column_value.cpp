#include "jet/format/column_value.h"

#include "jet/format/date_time_text.h"
#include "jet/format/numeric.h"
#include "jet/format/value_access.h"
#include "jet/value_conversion.h"

#include <cmath>

namespace jet
{
namespace
{

Numeric fittedNumber(const Numeric &value, const ColumnDefinition &column)
{
    const auto number = withScale(value, column.scale);
    if (!number || digitCount(*number) > column.precision)
        throwTypeConversion();
    return *number;
}

bool isTooLong(const Value &value, const ColumnDefinition &column)
{
    if (column.isLongValue())
        return false;
    if (const auto *text = std::get_if<Text>(&value))
        return 2 * text->size() > column.length;
    const auto *bytes = std::get_if<Bytes>(&value);
    return bytes != nullptr && bytes->size() > column.length;
}

/// Fast path for the types of a sample: true when the value already has the column's type.
bool isColumnValue(const Value &value, const ColumnDefinition &column)
{
    switch (column.type) {
    case ColumnType::Long:
        return std::holds_alternative<std::int32_t>(value);
    case ColumnType::Double: {
        const auto *number = std::get_if<double>(&value);
        return number != nullptr && std::isfinite(*number);
    }
    case ColumnType::DateTime: {
        const auto *moment = std::get_if<DateTime>(&value);
        return moment != nullptr && isInRange(*moment);
    }
    default:
        return false;
    }
}

} // namespace

Value columnValue(const Value &value, const ColumnDefinition &column)
{
    Value converted = convertValue(value, column.type);
    if (const auto *number = std::get_if<Numeric>(&converted))
        return fittedNumber(*number, column);
    if (isTooLong(converted, column))
        throwValueTooLong();
    return converted;
}

void makeColumnValue(Value &value, const ColumnDefinition &column)
{
    if (!isColumnValue(value, column))
        value = columnValue(value, column);
}

} // namespace jet
