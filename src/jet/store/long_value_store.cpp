#include "jet/store/long_value_store.h"

#include <algorithm>

namespace jet
{
namespace
{

constexpr std::size_t kNextPointerSize = 4;

/// The rows of a chain in order, each with the pointer to the next one before its data.
template <typename Visit>
void walkChain(const Pager &pager, const RowStore &rows, const LongValueRef &reference,
               Visit &&visit)
{
    RowPointer next = reference.first;
    // A row holds at least one byte, and a file no more rows than this.
    std::uint64_t left =
        std::min<std::uint64_t>(reference.length, std::uint64_t{pager.pageCount()} * kMaxSlots);
    while (!next.isNone()) {
        const StoredRow row = rows.read(next);
        if (row.bytes.size() <= kNextPointerSize || left-- == 0)
            throwDamaged("the parts of a long value do not fit together", next.page);
        const RowPointer current = next;
        next = readRowPointer(row.bytes, 0);
        visit(current, row.bytes.subspan(kNextPointerSize));
    }
}

} // namespace

LongValueRef LongValueStore::plan(ByteView data)
{
    if (data.size() > kMaxLongValueLength)
        throw Error(ErrorCode::ValueTooLong, "A long value is too long.");
    LongValueRef reference;
    reference.length = static_cast<std::uint32_t>(data.size());
    if (data.size() <= kMaxInlineLongValue)
        reference.inlineData.assign(data.begin(), data.end());
    else
        reference.form =
            data.size() <= kMaxLongValueRow ? LongValueForm::SingleRow : LongValueForm::Chain;
    return reference;
}

LongValueRef LongValueStore::write(ByteView data)
{
    LongValueRef reference = plan(data);
    if (reference.form == LongValueForm::SingleRow)
        reference.first = m_rows.insert(data);
    if (reference.form != LongValueForm::Chain)
        return reference;
    // Last part first, as each one points to the next.
    std::size_t end = data.size();
    while (end > 0) {
        const std::size_t length =
            end % kMaxLongValuePart == 0 ? kMaxLongValuePart : end % kMaxLongValuePart;
        Bytes part(kNextPointerSize);
        writeRowPointer(part, 0, reference.first);
        appendBytes(part, data.subspan(end - length, length));
        reference.first = m_rows.insert(part);
        end -= length;
    }
    return reference;
}

Bytes LongValueStore::read(const LongValueRef &reference) const
{
    if (reference.form == LongValueForm::Inline)
        return reference.inlineData;
    Bytes data;
    if (reference.form == LongValueForm::SingleRow) {
        const StoredRow row = m_rows.read(reference.first);
        data.assign(row.bytes.begin(), row.bytes.end());
    } else {
        walkChain(m_pager, m_rows, reference, [&](RowPointer, ByteView part) {
            if (data.size() <= reference.length)
                appendBytes(data, part);
        });
    }
    if (data.size() != reference.length)
        throwDamaged("a long value is not as long as its row says", reference.first.page);
    return data;
}

void LongValueStore::erase(const LongValueRef &reference)
{
    if (reference.form == LongValueForm::Inline)
        return;
    std::vector<RowPointer> parts;
    if (reference.form == LongValueForm::SingleRow)
        parts.push_back(reference.first);
    else
        walkChain(m_pager, m_rows, reference,
                  [&](RowPointer part, ByteView) { parts.push_back(part); });
    for (const RowPointer &part : parts)
        m_rows.erase(part);
}

} // namespace jet
