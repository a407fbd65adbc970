#include "jet/format/long_value.h"

namespace jet
{

LongValueRef decodeLongValueRef(ByteView stored)
{
    const std::uint32_t lengthAndForm = readU32(slice(stored, 0, kLongValueHeaderSize), 0);
    LongValueRef reference;
    reference.form = static_cast<LongValueForm>(lengthAndForm & ~kMaxLongValueLength);
    reference.length = lengthAndForm & kMaxLongValueLength;
    switch (reference.form) {
    case LongValueForm::Inline: {
        const ByteView data = slice(stored, kLongValueHeaderSize, reference.length);
        reference.inlineData.assign(data.begin(), data.end());
        return reference;
    }
    case LongValueForm::SingleRow:
    case LongValueForm::Chain:
        reference.first = readRowPointer(stored, 4);
        return reference;
    }
    throwDamaged("a long value of unknown form");
}

Bytes encodeLongValueRef(const LongValueRef &reference)
{
    Bytes stored;
    appendLittleEndian<4>(stored, reference.length | static_cast<std::uint32_t>(reference.form));
    appendLittleEndian<4>(stored, toNumber(reference.first));
    appendLittleEndian<4>(stored, 0);
    appendBytes(stored, reference.inlineData);
    return stored;
}

} // namespace jet
