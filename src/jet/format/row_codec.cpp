#include "jet/format/row_codec.h"

#include "jet/format/text_codec.h"
#include "jet/format/value_access.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>

namespace jet
{
namespace
{

constexpr std::size_t kFixedStart = 2;  ///< after the number of columns
constexpr std::size_t kUsualValue = 32; ///< bytes of a value and its place, to reserve
constexpr char16_t kPadding = u' ';     ///< of a Text column of fixed length

std::size_t maskSize(std::size_t columns)
{
    return (columns + 7) / 8;
}

Numeric decodeNumeric(ByteView stored, std::uint8_t scale)
{
    Numeric number;
    number.negative = readU8(stored, 0) != 0;
    number.scale = scale;
    // the most significant word comes first, each word by itself little-endian
    for (std::size_t word = 0; word < 4; ++word)
        number.magnitude[3 - word] = readU32(stored, 1 + 4 * word);
    return number;
}

void appendNumeric(Bytes &out, const Numeric &number)
{
    out.push_back(number.negative ? 0x80 : 0);
    for (std::size_t word = 0; word < 4; ++word)
        appendLittleEndian<4>(out, number.magnitude[3 - word]);
}

Guid decodeGuid(ByteView stored)
{
    Guid guid;
    std::ranges::copy(slice(stored, 0, guid.bytes.size()), guid.bytes.begin());
    return guid;
}

/// Assigning in place reuses the memory of the row's texts.
void decodeValue(ByteView stored, const RowLayout::Column &column, Value &value)
{
    switch (column.type) {
    case ColumnType::Boolean:
        break;
    case ColumnType::Byte:
        value = readU8(stored, 0);
        return;
    case ColumnType::Integer:
        value = static_cast<std::int16_t>(readU16(stored, 0));
        return;
    case ColumnType::Long:
        value = static_cast<std::int32_t>(readU32(stored, 0));
        return;
    case ColumnType::Currency:
        value = Currency{readI64(stored, 0)};
        return;
    case ColumnType::Single:
        value = std::bit_cast<float>(readU32(stored, 0));
        return;
    case ColumnType::Double:
        value = readF64(stored, 0);
        return;
    case ColumnType::DateTime:
        value = DateTime{readF64(stored, 0)};
        return;
    case ColumnType::Text:
        value = decodeText(stored);
        return;
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::Memo:
    case ColumnType::Block:
        value = Bytes(stored.begin(), stored.end());
        return;
    case ColumnType::Guid:
        value = decodeGuid(stored);
        return;
    case ColumnType::Numeric:
        value = decodeNumeric(stored, column.scale);
        return;
    }
    throwDamaged("a column of unknown type");
}

void appendText(Bytes &out, const Text &text, const RowLayout::Column &column)
{
    // the declared length limits the characters, not the bytes of the compressed form
    if (2 * text.size() > column.length)
        throwValueTooLong();
    appendBytes(out, encodeText(text, column.compressible && column.variable));
    for (std::size_t size = 2 * text.size(); !column.variable && size < column.length; size += 2)
        appendLittleEndian<2>(out, kPadding);
}

void appendBinary(Bytes &out, const Bytes &bytes, const RowLayout::Column &column)
{
    if (bytes.size() > column.length)
        throwValueTooLong();
    appendBytes(out, bytes);
    if (!column.variable)
        out.insert(out.end(), column.length - bytes.size(), 0);
}

template <typename Signed>
void appendSigned(Bytes &out, Signed number)
{
    appendLittleEndian<sizeof(Signed)>(out, static_cast<std::uint64_t>(number));
}

void appendValue(Bytes &out, const Value &value, const RowLayout::Column &column)
{
    switch (column.type) {
    case ColumnType::Boolean:
        break;
    case ColumnType::Byte:
        return out.push_back(valueAs<std::uint8_t>(value));
    case ColumnType::Integer:
        return appendSigned(out, valueAs<std::int16_t>(value));
    case ColumnType::Long:
        return appendSigned(out, valueAs<std::int32_t>(value));
    case ColumnType::Currency:
        return appendSigned(out, valueAs<Currency>(value).tenThousandths);
    case ColumnType::Single:
        return appendLittleEndian<4>(out, std::bit_cast<std::uint32_t>(valueAs<float>(value)));
    case ColumnType::Double:
        return appendLittleEndian<8>(out, std::bit_cast<std::uint64_t>(valueAs<double>(value)));
    case ColumnType::DateTime:
        return appendLittleEndian<8>(out,
                                     std::bit_cast<std::uint64_t>(valueAs<DateTime>(value).days));
    case ColumnType::Text:
        return appendText(out, valueAs<Text>(value), column);
    case ColumnType::Binary:
    case ColumnType::Block:
        return appendBinary(out, valueAs<Bytes>(value), column);
    case ColumnType::Ole:
    case ColumnType::Memo:
        return appendBytes(out, valueAs<Bytes>(value));
    case ColumnType::Guid:
        return appendBytes(out, valueAs<Guid>(value).bytes);
    case ColumnType::Numeric:
        return appendNumeric(out, valueAs<Numeric>(value));
    }
    throwTypeConversion();
}

/// Writes the fixed columns; a null leaves zeros.
void writeFixedArea(Bytes &row, std::span<const Value> values, const RowLayout &layout)
{
    Bytes stored;
    stored.reserve(kUsualValue);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const RowLayout::Column &column = layout.columns[i];
        if (column.variable || column.type == ColumnType::Boolean || isNull(values[i]))
            continue;
        stored.clear();
        appendValue(stored, values[i], column);
        writeBytes(row, kFixedStart + column.place, stored);
    }
}

/// Writes the variable values after the fixed area, then their offsets, last one first.
void appendVariableValues(Bytes &row, std::span<const Value> values, const RowLayout &layout)
{
    std::array<std::size_t, kMaxColumns> starts;
    std::size_t count = 0;
    for (const std::size_t i : layout.variableColumns) {
        starts[count++] = row.size();
        if (i != RowLayout::kNoColumn && !isNull(values[i]))
            appendValue(row, values[i], layout.columns[i]);
    }
    appendLittleEndian<2>(row, row.size());
    for (std::size_t i = count; i-- > 0;)
        appendLittleEndian<2>(row, starts[i]);
    appendLittleEndian<2>(row, count);
}

void appendNullMask(Bytes &row, std::span<const Value> values, const RowLayout &layout)
{
    const std::size_t start = row.size();
    row.resize(start + maskSize(layout.columnCount));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const RowLayout::Column &column = layout.columns[i];
        const bool set =
            !isNull(values[i]) && (column.type != ColumnType::Boolean || valueAs<bool>(values[i]));
        if (set) {
            std::uint8_t &byte = row[start + column.number / 8u];
            byte = static_cast<std::uint8_t>(byte | 1u << column.number % 8u);
        }
    }
}

} // namespace

RowLayout makeRowLayout(const TableDefinition &table)
{
    RowLayout layout;
    layout.columnCount = table.maxColumns;
    layout.variableColumns.assign(table.variableColumns, RowLayout::kNoColumn);
    for (const ColumnDefinition &source : table.columns) {
        RowLayout::Column column{source.type, source.number};
        column.variable = !source.isFixed();
        column.place = column.variable ? source.variableIndex : source.fixedOffset;
        column.length = source.length;
        column.compressible = source.compressible;
        column.scale = source.scale;
        if (column.variable) {
            if (column.place >= layout.variableColumns.size())
                layout.variableColumns.resize(column.place + 1u, RowLayout::kNoColumn);
            layout.variableColumns[column.place] = layout.columns.size();
            layout.firstVariableNumber = std::min(layout.firstVariableNumber, column.number);
        } else if (column.type != ColumnType::Boolean) {
            const auto end = static_cast<std::uint16_t>(column.place + column.length);
            layout.fixedSize = std::max(layout.fixedSize, end);
        }
        layout.columns.push_back(column);
    }
    return layout;
}

RowView::RowView(ByteView row, const RowLayout &layout) : m_row(row), m_layout(&layout)
{
    m_columnCount = readU16(row, 0);
    if (m_columnCount == 0 || m_columnCount > layout.columnCount)
        throwDamaged("a row has an impossible number of columns");
    const std::size_t mask = maskSize(m_columnCount);
    if (row.size() < kFixedStart + mask)
        throwDamaged("a row is shorter than its bookkeeping");
    m_maskStart = row.size() - mask;
    m_fixedEnd = m_maskStart;

    // rows from before the table's first variable column have no offset table
    if (layout.firstVariableNumber >= m_columnCount)
        return;
    if (m_maskStart < kFixedStart + 2)
        throwDamaged("a row is shorter than its bookkeeping");
    m_variableCount = readU16(row, m_maskStart - 2);
    if (m_variableCount > kMaxColumns || m_maskStart < kFixedStart + 4 + 2 * m_variableCount)
        throwDamaged("a row has an impossible number of variable values");
    std::size_t end = kFixedStart;
    for (std::size_t i = 0; i <= m_variableCount; ++i) {
        const std::size_t offset = readU16(row, m_maskStart - 4 - 2 * i);
        if (offset < end)
            throwDamaged("the variable values of a row overlap");
        end = offset;
    }
    if (end > m_maskStart - 4 - 2 * m_variableCount)
        throwDamaged("the variable values of a row run into its bookkeeping");
    m_fixedEnd = readU16(row, m_maskStart - 4);
}

bool RowView::maskBit(std::uint16_t number) const
{
    return number < m_columnCount && (m_row[m_maskStart + number / 8u] >> number % 8u & 1u) != 0;
}

bool RowView::isNull(std::size_t column) const
{
    const RowLayout::Column &layout = m_layout->columns[column];
    if (layout.type == ColumnType::Boolean)
        return false;
    return !maskBit(layout.number) || (layout.variable && layout.place >= m_variableCount);
}

ByteView RowView::storedVariable(std::uint16_t index) const
{
    const std::size_t place = m_maskStart - 4 - std::size_t{2} * index;
    const std::size_t start = readU16(m_row, place);
    return slice(m_row, start, readU16(m_row, place - 2) - start);
}

ByteView RowView::stored(std::size_t column) const
{
    const RowLayout::Column &layout = m_layout->columns[column];
    assert(!isNull(column));
    if (layout.variable)
        return storedVariable(layout.place);
    return slice(m_row.first(m_fixedEnd), kFixedStart + layout.place, layout.length);
}

Value RowView::value(std::size_t column) const
{
    Value value;
    read(column, value);
    return value;
}

void RowView::read(std::size_t column, Value &value) const
{
    const RowLayout::Column &layout = m_layout->columns[column];
    if (layout.type == ColumnType::Boolean)
        value = maskBit(layout.number);
    else if (isNull(column))
        value = Null{};
    else
        decodeValue(stored(column), layout, value);
}

Bytes encodeRow(std::span<const Value> values, const RowLayout &layout)
{
    assert(values.size() == layout.columns.size());
    Bytes row;
    row.reserve(kFixedStart + layout.fixedSize + kUsualValue * (layout.variableColumns.size() + 1));
    row.resize(kFixedStart + layout.fixedSize);
    writeU16(row, 0, layout.columnCount);
    writeFixedArea(row, values, layout);
    if (!layout.variableColumns.empty())
        appendVariableValues(row, values, layout);
    appendNullMask(row, values, layout);
    if (row.size() > kMaxRowSize)
        throw Error(ErrorCode::RecordTooLarge, "Record is too large.");
    return row;
}

} // namespace jet
