#pragma once

#include "jet/format/bytes.h"
#include "jet/format/table_definition.h"
#include "jet/value.h"

#include <cstdint>
#include <span>
#include <vector>

namespace jet
{

// A row; offsets from its start:
//   0 u16 number of columns when the row was written; later columns are null
//   2 fixed area: the values of the fixed columns at their offsets; null ones keep their place
//     variable values in the order of their index, null ones take no bytes
//     only in tables with variable columns: u16 end of the last value | u16 offset of each value,
//     the last one first | u16 number of variable values
//     null mask, bit = column number, 1 = not null; the bit of a Boolean column is its value

/// What the row codec needs of a table definition, computed once.
struct RowLayout {
    struct Column {
        ColumnType type = ColumnType::Long;
        std::uint16_t number = 0;
        bool variable = false;
        std::uint16_t place = 0; ///< index of a variable column, offset of a fixed one (Boolean: 0)
        std::uint16_t length = 0; ///< as in ColumnDefinition
        bool compressible = false;
        std::uint8_t scale = 0; ///< Numeric only
    };

    static constexpr std::size_t kNoColumn = SIZE_MAX; ///< of a column deleted since

    std::vector<Column> columns;              ///< same order as TableDefinition::columns
    std::vector<std::size_t> variableColumns; ///< place in `columns` by variable index
    std::uint16_t columnCount = 0;
    std::uint16_t fixedSize = 0;
    std::uint16_t firstVariableNumber = 0xFFFF; ///< lowest number of a variable column
};

RowLayout makeRowLayout(const TableDefinition &table);

/// Reads single columns of a row without copying the others. The bytes and the layout must outlive
/// it. `column` is an index into RowLayout::columns.
class RowView
{
public:
    /// Throws Error(Damaged) when the row's own bookkeeping is inconsistent.
    RowView(ByteView row, const RowLayout &layout);

    /// Never null: a Boolean column.
    bool isNull(std::size_t column) const;

    /// The column's value. A Memo or OLE column yields its stored reference as Bytes, for
    /// decodeLongValueRef(). Throws Error(Damaged).
    Value value(std::size_t column) const;
    /// The same into an existing value, which is faster for many rows.
    void read(std::size_t column, Value &value) const;

    /// The stored bytes of a column that is not null and not Boolean.
    ByteView stored(std::size_t column) const;

private:
    bool maskBit(std::uint16_t number) const;
    ByteView storedVariable(std::uint16_t index) const;

    ByteView m_row;
    const RowLayout *m_layout;
    std::size_t m_columnCount = 0;
    std::size_t m_maskStart = 0;
    std::size_t m_variableCount = 0; ///< as the row itself states it
    std::size_t m_fixedEnd = 0;      ///< first byte after the fixed area
};

/// The bytes of a row. `values` in the order of RowLayout::columns, each Null or of the column's
/// own type (see convertValue()); Memo and OLE columns take Bytes, the stored reference made by
/// encodeLongValueRef(). A null Boolean is stored as false. Throws Error(RecordTooLarge) for more
/// than kMaxRowSize bytes, Error(ValueTooLong), Error(TypeConversion) for a value of another type.
Bytes encodeRow(std::span<const Value> values, const RowLayout &layout);

} // namespace jet
