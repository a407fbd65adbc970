#pragma once

#include "jet/value.h"

#include <string>

namespace jet
{

/// A value as another type, as DAO converts it:
/// - Null stays Null, except as a Boolean, where it is false;
/// - Boolean takes numbers (not zero is true) and the texts "Yes", "True", "On", "No", "False",
///   "Off" in any case, and number texts;
/// - whole numbers round half to even; true is -1 (255 as a Byte);
/// - Text and Memo take the default text of any other value, see defaultText();
/// - DateTime takes a number of days, ISO texts ("2026-11-21 13:30:00"), day.month.year texts and
///   times ("13:30");
/// - Guid takes "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}" texts;
/// - Binary without bytes is Null.
/// Number texts take "." or "," as the decimal separator. The result is Null or has that type
/// (Memo: Text; OLE and Block: Bytes). Throws Error(TypeConversion) for what cannot be converted or
/// held.
Value convertValue(const Value &value, ColumnType type);

/// Locale-free text of a value: numbers with "." and 15 significant digits (Single 7), true as
/// "-1", dates as "2026-11-21 13:30:00" without the part that is zero (as numbers of days when no
/// date has that number). Null is empty; bytes are hexadecimal digits.
std::string defaultText(const Value &value);

} // namespace jet
