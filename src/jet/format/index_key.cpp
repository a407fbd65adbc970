#include "jet/format/index_key.h"

#include "jet/format/guid.h"
#include "jet/format/value_access.h"

#include <bit>
#include <cassert>

namespace jet
{
namespace
{

constexpr std::uint8_t kNotNull = 0x7F;
constexpr std::uint8_t kNull = 0x00;
constexpr std::size_t kBinaryGroup = 8;
constexpr std::uint8_t kGroupFollows = 9;

void complement(Bytes &key, std::size_t from)
{
    for (std::size_t i = from; i < key.size(); ++i)
        key[i] = static_cast<std::uint8_t>(~key[i]);
}

/// Two's complement with the sign bit inverted sorts like the numbers.
template <typename Signed>
void appendSigned(Bytes &key, Signed number)
{
    constexpr std::uint64_t signBit = std::uint64_t{1} << (8 * sizeof(Signed) - 1);
    appendBigEndian<sizeof(Signed)>(key, static_cast<std::uint64_t>(number) ^ signBit);
}

/// IEEE bits sort like the numbers once the sign bit is inverted, all bits for negative ones.
template <typename Unsigned>
void appendFloating(Bytes &key, Unsigned bits)
{
    constexpr Unsigned signBit = Unsigned{1} << (8 * sizeof(Unsigned) - 1);
    appendBigEndian<sizeof(Unsigned)>(key, (bits & signBit) != 0 ? ~bits : bits ^ signBit);
}

/// Groups of eight bytes, zero padded, each followed by 9 when more follow, else by the number of
/// bytes of the group that count. In a descending column all is complemented but the 9.
void appendBinary(Bytes &key, ByteView bytes, bool ascending)
{
    const auto direction = [ascending](std::uint8_t byte) {
        return static_cast<std::uint8_t>(ascending ? byte : ~byte);
    };
    while (!bytes.empty()) {
        const bool last = bytes.size() <= kBinaryGroup;
        const ByteView group = bytes.first(last ? bytes.size() : kBinaryGroup);
        for (std::size_t i = 0; i < kBinaryGroup; ++i)
            key.push_back(direction(i < group.size() ? group[i] : std::uint8_t{0}));
        key.push_back(last ? direction(static_cast<std::uint8_t>(group.size())) : kGroupFollows);
        bytes = bytes.subspan(group.size());
    }
}

void appendNumeric(Bytes &key, const Numeric &number)
{
    key.push_back(number.negative ? 0x00 : 0xFF);
    const std::size_t magnitude = key.size();
    for (std::size_t word = 4; word-- > 0;)
        appendBigEndian<4>(key, number.magnitude[word]);
    if (number.negative)
        complement(key, magnitude);
}

void appendText(Bytes &key, const Text &text, const KeyColumn &column)
{
    const bool isGeneral = column.sortOrder == kGeneralSortOrder && column.sortVersion == 0;
    if (!isGeneral && !column.inMemory)
        throw Error(ErrorCode::NotSupported, "The sort order of the text is not known.");
    appendBytes(key, generalSortKey(text, column.inMemory));
}

/// The flag and the value in the ascending form, binary values already in their direction.
void appendValue(Bytes &key, const Value &value, const KeyColumn &column)
{
    switch (column.type) {
    case ColumnType::Boolean:
        key.push_back(valueAs<bool>(value) ? 0x00 : 0xFF);
        return;
    case ColumnType::Byte:
        key.push_back(valueAs<std::uint8_t>(value));
        return;
    case ColumnType::Integer:
        return appendSigned(key, valueAs<std::int16_t>(value));
    case ColumnType::Long:
        return appendSigned(key, valueAs<std::int32_t>(value));
    case ColumnType::Currency:
        return appendSigned(key, valueAs<Currency>(value).tenThousandths);
    case ColumnType::Single:
        return appendFloating(key, std::bit_cast<std::uint32_t>(valueAs<float>(value)));
    case ColumnType::Double:
        return appendFloating(key, std::bit_cast<std::uint64_t>(valueAs<double>(value)));
    case ColumnType::DateTime:
        return appendFloating(key, std::bit_cast<std::uint64_t>(valueAs<DateTime>(value).days));
    case ColumnType::Text:
    case ColumnType::Memo:
        return appendText(key, valueAs<Text>(value), column);
    case ColumnType::Numeric:
        if (!column.ascending && !column.inMemory)
            break; // differs between versions of the database program
        return appendNumeric(key, valueAs<Numeric>(value));
    case ColumnType::Binary:
    case ColumnType::Guid:
    case ColumnType::Ole:
    case ColumnType::Block:
        break;
    }
    throw Error(ErrorCode::NotSupported, "The engine cannot order an index of this type.");
}

Bytes sortedBytes(const Value &value)
{
    if (!std::holds_alternative<Guid>(value))
        return valueAs<Bytes>(value);
    const auto written = inWrittenOrder(std::get<Guid>(value));
    return {written.begin(), written.end()};
}

void appendColumn(Bytes &key, const Value &value, const KeyColumn &column)
{
    const std::size_t start = key.size();
    key.push_back(kNotNull);
    const bool isUnordered = column.type == ColumnType::Ole || column.type == ColumnType::Block;
    if (column.type == ColumnType::Binary || column.type == ColumnType::Guid ||
        (isUnordered && column.inMemory)) {
        if (!column.ascending)
            complement(key, start);
        appendBinary(key, sortedBytes(value), column.ascending);
        return;
    }
    appendValue(key, value, column);
    if (column.ascending)
        return;
    complement(key, start);
    if (column.type == ColumnType::Text || column.type == ColumnType::Memo)
        key.push_back(0x00); // a complemented end of text does not terminate the key
}

} // namespace

std::vector<KeyColumn> keyColumns(const TableDefinition &table, const RealIndex &index)
{
    std::vector<KeyColumn> columns;
    for (const IndexColumn &part : index.columns) {
        const ColumnDefinition &column = table.columns[table.columnAt(part.column)];
        columns.push_back({column.type, part.ascending, column.sortOrder, column.sortVersion});
    }
    return columns;
}

IndexKey encodeIndexKey(std::span<const Value> values, std::span<const KeyColumn> columns)
{
    assert(values.size() == columns.size());
    IndexKey key;
    for (std::size_t i = 0; i < columns.size(); ++i)
        appendKeyColumn(key, values[i], columns[i]);
    return key;
}

void appendKeyColumn(IndexKey &key, const Value &value, const KeyColumn &column)
{
    // a Boolean column has no null
    const bool null = isNull(value) && column.type != ColumnType::Boolean;
    key.anyNull = key.anyNull || null;
    key.allNull = key.allNull && null;
    if (null)
        key.bytes.push_back(column.ascending ? kNull : static_cast<std::uint8_t>(~kNull));
    else
        appendColumn(key.bytes, isNull(value) ? Value{false} : value, column);
}

} // namespace jet
