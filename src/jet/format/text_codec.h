#pragma once

#include "jet/format/bytes.h"
#include "jet/value.h"

#include <string_view>

namespace jet
{

// Stored text: UTF-16 units, or compressed: the bytes FF FE, then one byte per character below
// U+0100; inside it a byte 00 switches to UTF-16 units and the next 00 unit start switches back.
// Which of the two a value uses shows only in its first two bytes.

/// Throws Error(Damaged) when the bytes end inside a character.
Text decodeText(ByteView stored);

/// Compressed when the column allows it and it makes the value shorter.
Bytes encodeText(std::u16string_view text, bool compressible);

} // namespace jet
