#pragma once

#include "jet/format/table_definition.h"
#include "jet/value.h"

#include <string>

namespace jet
{

/// What an assignment of `value` to a column stores, as DAO converts it:
/// - Null stays Null, except in a Boolean column, where it is false;
/// - Boolean columns take numbers (not zero is true) and the texts "Yes", "True", "On", "No",
///   "False", "Off" in any case, and number texts;
/// - whole-number columns round half to even; true is -1 (255 in a Byte column);
/// - Text and Memo take the default text of any other value, see defaultText();
/// - DateTime takes a number of days, ISO texts ("2026-11-21 13:30:00"), day.month.year texts and
///   times ("13:30");
/// - Guid takes "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}" texts.
/// Number texts take "." or "," as the decimal separator. The result is Null or has the column's
/// type (Memo: Text, OLE: Bytes). Throws Error(TypeConversion), number 3421, for what cannot be
/// converted or held, Error(ValueTooLong), number 3163, for a text or binary that is too long.
Value convertValue(const Value &value, const ColumnDefinition &column);

/// Locale-free text of a value: numbers with "." and 15 significant digits (Single 7), true as
/// "-1", dates as "2026-11-21 13:30:00" without the part that is zero (as numbers of days when no
/// date has that number). Null is empty; bytes are
/// hexadecimal digits.
std::string defaultText(const Value &value);

} // namespace jet
