#pragma once

#include "jet/format/table_definition.h"
#include "jet/value.h"

namespace jet
{

/// What a column stores for an assigned value: it is converted to the column's type, see
/// convertValue(), and must fit. Throws Error(TypeConversion), also for a number with too many
/// digits, and Error(ValueTooLong) for a text or binary that is too long.
Value columnValue(const Value &value, const ColumnDefinition &column);
/// The same in place, which is faster where there is nothing to convert.
void makeColumnValue(Value &value, const ColumnDefinition &column);

} // namespace jet
