#pragma once

#include "jet/format/bytes.h"

namespace jet
{

// Long value (Memo, OLE) as stored in a row; offsets from the start of its bytes:
//   0 u32 length of the data | form in the top bits | 4 row pointer | 8 u32 0 | 12 inline data
// Forms: 0x80000000 the data follows inline; 0x40000000 one row of a long-value page;
// 0 a chain of rows, each beginning with the pointer of the next one (all zero ends the chain).

inline constexpr std::size_t kLongValueHeaderSize = 12;
/// Longer data is stored outside the row.
inline constexpr std::size_t kMaxInlineLongValue = 64;
inline constexpr std::size_t kMaxLongValueRow = 4076;
/// Data bytes of one row of a chain, after the pointer to the next row.
inline constexpr std::size_t kMaxLongValuePart = 4072;
inline constexpr std::uint32_t kMaxLongValueLength = 0x3FFFFFFF;

enum class LongValueForm : std::uint32_t {
    Chain = 0,
    SingleRow = 0x40000000,
    Inline = 0x80000000,
};

/// Where the data of a long value is. Memo data is text in the form of text_codec.h.
struct LongValueRef {
    LongValueForm form = LongValueForm::Inline;
    std::uint32_t length = 0; ///< bytes of data
    RowPointer first;         ///< the single row or the first row of the chain
    Bytes inlineData;         ///< only for Inline; then `length` bytes
    bool operator==(const LongValueRef &) const = default;
};

/// Throws Error(Damaged) when the stored bytes are too short or of an unknown form.
LongValueRef decodeLongValueRef(ByteView stored);
Bytes encodeLongValueRef(const LongValueRef &reference);

} // namespace jet
