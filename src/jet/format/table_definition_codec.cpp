#include "jet/format/table_definition_codec.h"

#include "jet/format/text_codec.h"

#include <algorithm>
#include <cassert>

namespace jet
{
namespace
{

constexpr std::uint8_t kDefinitionPageType = 2;
constexpr std::size_t kPageHeaderSize = 8;
constexpr std::size_t kLengthOffset = 8;
constexpr std::size_t kFixedPartSize = 63;
constexpr std::size_t kColumnSize = 25;
constexpr std::size_t kRealIndexSize = 12 + 52; ///< counters and descriptor
constexpr std::size_t kLogicalIndexSize = 28;
constexpr std::uint32_t kMagic = 1625;
constexpr std::uint32_t kRealIndexMagic = 1923;
constexpr std::uint16_t kNone = 0xFFFF;
/// 255 columns and some hundred indexes with the longest names stay far below; it bounds the pages
/// read for a damaged definition.
constexpr std::size_t kMaxDefinitionLength = 1u << 20;

/// Reads the fields of a definition in order.
class Reader
{
public:
    explicit Reader(ByteView bytes) : m_bytes(bytes) {}

    ByteView take(std::size_t length)
    {
        const ByteView part = slice(m_bytes, m_position, length);
        m_position += length;
        return part;
    }
    std::uint16_t takeU16() { return readU16(take(2), 0); }
    Text takeName()
    {
        const std::uint16_t length = takeU16();
        if (length == 0 || length % 2 != 0 || length > 2 * kMaxNameLength)
            throwDamaged("a name in a table definition has an impossible length");
        Text name;
        const ByteView stored = take(length);
        for (std::size_t i = 0; i < stored.size(); i += 2)
            name.push_back(static_cast<char16_t>(readU16(stored, i)));
        return name;
    }
    /// Checks a count against the remaining bytes before memory is reserved for it.
    std::size_t checkedCount(std::size_t count, std::size_t bytesEach) const
    {
        if (count > (m_bytes.size() - m_position) / bytesEach)
            throwDamaged("a table definition counts more entries than it holds");
        return count;
    }

private:
    ByteView m_bytes;
    std::size_t m_position = 0;
};

bool isKnown(ColumnType type)
{
    return (type >= ColumnType::Boolean && type <= ColumnType::Memo) ||
           (type >= ColumnType::Guid && type <= ColumnType::Block);
}

void checkColumn(const ColumnDefinition &column, std::uint16_t maxColumns)
{
    if (!isKnown(column.type))
        throwDamaged("a column has an unknown type");
    if (column.number >= maxColumns)
        throwDamaged("a column number is out of range");
    const std::size_t size = fixedSize(column.type);
    if (size != 0 && column.length != size)
        throwDamaged("a column's length does not fit its type");
    if (size == 0 && column.length > kMaxTextBytes)
        throwDamaged("a column is too long");
    const bool inFixedArea = column.isFixed() && column.type != ColumnType::Boolean;
    if (inFixedArea && column.fixedOffset + std::size_t{column.length} > kMaxRowSize)
        throwDamaged("a column lies outside its row");
    if (column.isAutonumber() && column.type != ColumnType::Long)
        throwDamaged("a column counts by itself but is no Long");
    if (column.isFixed() && column.isLongValue())
        throwDamaged("a long value cannot have a fixed length");
    if (!column.isFixed() && column.variableIndex >= kMaxColumns)
        throwDamaged("a variable column's place is out of range");
}

ColumnDefinition parseColumn(ByteView bytes, std::uint16_t maxColumns)
{
    ColumnDefinition column;
    column.type = static_cast<ColumnType>(readU8(bytes, 0));
    column.number = readU16(bytes, 5);
    column.variableIndex = readU16(bytes, 7);
    column.ordinal = readU16(bytes, 9);
    if (column.type == ColumnType::Numeric) {
        column.precision = readU8(bytes, 11);
        column.scale = readU8(bytes, 12);
    } else {
        column.sortOrder = readU16(bytes, 11);
        column.sortVersion = readU8(bytes, 14);
    }
    column.flags = readU8(bytes, 15);
    column.compressible = (readU8(bytes, 16) & 0x01) != 0;
    column.fixedOffset = readU16(bytes, 21);
    column.length = readU16(bytes, 23);
    checkColumn(column, maxColumns);
    return column;
}

Bytes encodeColumn(const ColumnDefinition &column)
{
    Bytes bytes(kColumnSize);
    writeU8(bytes, 0, static_cast<std::uint8_t>(column.type));
    writeU32(bytes, 1, kMagic);
    writeU16(bytes, 5, column.number);
    writeU16(bytes, 7, column.variableIndex);
    writeU16(bytes, 9, column.ordinal);
    if (column.type == ColumnType::Numeric) {
        writeU8(bytes, 11, column.precision);
        writeU8(bytes, 12, column.scale);
    } else {
        writeU16(bytes, 11, column.sortOrder);
        writeU8(bytes, 14, column.sortVersion);
    }
    writeU8(bytes, 15, column.flags);
    writeU8(bytes, 16, column.compressible ? 0x01 : 0);
    writeU16(bytes, 21, column.fixedOffset);
    writeU16(bytes, 23, column.length);
    return bytes;
}

RealIndex parseRealIndex(ByteView bytes, std::uint32_t uniqueEntries, const TableDefinition &table)
{
    RealIndex index;
    for (std::size_t i = 0; i < kMaxIndexColumns; ++i) {
        const std::uint16_t number = readU16(bytes, 4 + 3 * i);
        if (number == kNone)
            continue;
        static_cast<void>(table.columnAt(number));
        index.columns.push_back({number, readU8(bytes, 6 + 3 * i) == 1});
    }
    index.usageMap = readRowPointer(bytes, 34);
    index.root = readU32(bytes, 38);
    index.flags = readU8(bytes, 46);
    index.uniqueEntries = uniqueEntries;
    if (index.columns.empty() || index.root == 0)
        throwDamaged("an index without columns or pages");
    return index;
}

Bytes encodeRealIndex(const RealIndex &index)
{
    Bytes bytes(52);
    writeU32(bytes, 0, kRealIndexMagic);
    for (std::size_t i = 0; i < kMaxIndexColumns; ++i) {
        const bool used = i < index.columns.size();
        writeU16(bytes, 4 + 3 * i, used ? index.columns[i].column : kNone);
        writeU8(bytes, 6 + 3 * i, used && index.columns[i].ascending ? 1 : 0);
    }
    writeRowPointer(bytes, 34, index.usageMap);
    writeU32(bytes, 38, index.root);
    writeU8(bytes, 46, index.flags);
    return bytes;
}

LogicalIndex parseLogicalIndex(ByteView bytes, std::size_t realIndexes)
{
    LogicalIndex index;
    index.number = readU32(bytes, 4);
    index.realIndex = readU32(bytes, 8);
    index.relationRole = readU8(bytes, 12);
    index.relationIndex = readU32(bytes, 13);
    index.relationTable = readU32(bytes, 17);
    index.cascadeUpdates = readU8(bytes, 21);
    index.cascadeDeletes = readU8(bytes, 22);
    index.kind = static_cast<LogicalIndexKind>(readU8(bytes, 23));
    if (index.realIndex >= realIndexes)
        throwDamaged("an index refers to a tree that does not exist");
    if (index.kind > LogicalIndexKind::Foreign)
        throwDamaged("an index is of an unknown kind");
    return index;
}

Bytes encodeLogicalIndex(const LogicalIndex &index)
{
    Bytes bytes(kLogicalIndexSize);
    writeU32(bytes, 0, kMagic);
    writeU32(bytes, 4, index.number);
    writeU32(bytes, 8, index.realIndex);
    writeU8(bytes, 12, index.relationRole);
    writeU32(bytes, 13, index.relationIndex);
    writeU32(bytes, 17, index.relationTable);
    writeU8(bytes, 21, index.cascadeUpdates);
    writeU8(bytes, 22, index.cascadeDeletes);
    writeU8(bytes, 23, static_cast<std::uint8_t>(index.kind));
    return bytes;
}

void appendName(Bytes &bytes, const Text &name)
{
    appendLittleEndian<2>(bytes, 2 * name.size());
    appendBytes(bytes, encodeText(name, false));
}

void parseColumns(Reader &reader, std::size_t count, TableDefinition &table)
{
    if (count > table.maxColumns)
        throwDamaged("a table has more columns than column numbers");
    std::vector<bool> usedNumbers(kMaxColumns);
    std::vector<bool> usedPlaces(kMaxColumns);
    for (std::size_t i = 0; i < count; ++i) {
        const ColumnDefinition column = parseColumn(reader.take(kColumnSize), table.maxColumns);
        if (usedNumbers[column.number] || (!column.isFixed() && usedPlaces[column.variableIndex]))
            throwDamaged("two columns have the same number or place");
        usedNumbers[column.number] = true;
        if (!column.isFixed())
            usedPlaces[column.variableIndex] = true;
        table.columns.push_back(column);
    }
    for (ColumnDefinition &column : table.columns)
        column.name = reader.takeName();
}

void parseLongValueMaps(Reader &reader, TableDefinition &table)
{
    for (std::uint16_t column = reader.takeU16(); column != kNone; column = reader.takeU16()) {
        const ByteView pointers = reader.take(8);
        table.longValueMaps.push_back(
            {column, readRowPointer(pointers, 0), readRowPointer(pointers, 4)});
    }
}

/// Length of the definition as it states itself.
std::size_t statedLength(ByteView definition)
{
    const std::size_t length = readU32(definition, kLengthOffset);
    if (length < kFixedPartSize || length > kMaxDefinitionLength)
        throwDamaged("a table definition has an impossible length");
    return length;
}

} // namespace

TableDefinition parseTableDefinition(ByteView definition)
{
    definition = slice(definition, 0, statedLength(definition));
    Reader reader(definition);
    const ByteView fixedPart = reader.take(kFixedPartSize);

    TableDefinition table;
    table.rowCount = readU32(fixedPart, kRowCountOffset);
    table.lastAutonumber = readU32(fixedPart, kAutonumberOffset);
    table.kind = static_cast<TableKind>(readU8(fixedPart, 40));
    table.maxColumns = readU16(fixedPart, 41);
    table.variableColumns = readU16(fixedPart, 43);
    table.ownedPages = readRowPointer(fixedPart, 55);
    table.freeSpacePages = readRowPointer(fixedPart, 59);
    if (table.kind != TableKind::User && table.kind != TableKind::System)
        throwDamaged("a table definition is of an unknown kind");
    if (table.maxColumns > kMaxColumns || table.variableColumns > kMaxColumns)
        throwDamaged("a table has too many columns");

    const std::size_t realIndexes = reader.checkedCount(readU32(fixedPart, 51), kRealIndexSize);
    std::vector<std::uint32_t> uniqueEntries(realIndexes);
    for (std::uint32_t &entries : uniqueEntries)
        entries = readU32(reader.take(12), 4);

    parseColumns(reader, readU16(fixedPart, 45), table);
    for (const std::uint32_t entries : uniqueEntries)
        table.realIndexes.push_back(parseRealIndex(reader.take(52), entries, table));

    const std::size_t logicalIndexes =
        reader.checkedCount(readU32(fixedPart, 47), kLogicalIndexSize);
    for (std::size_t i = 0; i < logicalIndexes; ++i)
        table.logicalIndexes.push_back(
            parseLogicalIndex(reader.take(kLogicalIndexSize), realIndexes));
    for (LogicalIndex &index : table.logicalIndexes)
        index.name = reader.takeName();

    parseLongValueMaps(reader, table);
    return table;
}

Bytes encodeTableDefinition(const TableDefinition &table)
{
    Bytes bytes(kFixedPartSize);
    writeU8(bytes, 0, kDefinitionPageType);
    writeU8(bytes, 1, 1);
    writeU32(bytes, 12, kMagic);
    writeU32(bytes, kRowCountOffset, table.rowCount);
    writeU32(bytes, kAutonumberOffset, table.lastAutonumber);
    writeU8(bytes, 24, 1);
    writeU8(bytes, 40, static_cast<std::uint8_t>(table.kind));
    writeU16(bytes, 41, table.maxColumns);
    writeU16(bytes, 43, table.variableColumns);
    writeU16(bytes, 45, static_cast<std::uint16_t>(table.columns.size()));
    writeU32(bytes, 47, static_cast<std::uint32_t>(table.logicalIndexes.size()));
    writeU32(bytes, 51, static_cast<std::uint32_t>(table.realIndexes.size()));
    writeRowPointer(bytes, 55, table.ownedPages);
    writeRowPointer(bytes, 59, table.freeSpacePages);

    for (const RealIndex &index : table.realIndexes) {
        appendLittleEndian<4>(bytes, 0);
        appendLittleEndian<4>(bytes, index.uniqueEntries);
        appendLittleEndian<4>(bytes, 0);
    }
    for (const ColumnDefinition &column : table.columns)
        appendBytes(bytes, encodeColumn(column));
    for (const ColumnDefinition &column : table.columns)
        appendName(bytes, column.name);
    for (const RealIndex &index : table.realIndexes)
        appendBytes(bytes, encodeRealIndex(index));
    for (const LogicalIndex &index : table.logicalIndexes)
        appendBytes(bytes, encodeLogicalIndex(index));
    for (const LogicalIndex &index : table.logicalIndexes)
        appendName(bytes, index.name);
    for (const LongValueMaps &maps : table.longValueMaps) {
        appendLittleEndian<2>(bytes, maps.column);
        appendLittleEndian<4>(bytes, toNumber(maps.ownedPages));
        appendLittleEndian<4>(bytes, toNumber(maps.freeSpacePages));
    }
    appendLittleEndian<2>(bytes, kNone);
    writeU32(bytes, kLengthOffset, static_cast<std::uint32_t>(bytes.size()));
    return bytes;
}

std::size_t definitionPageCount(std::size_t definitionLength)
{
    constexpr std::size_t perPage = kPageSize - kPageHeaderSize;
    return (definitionLength - kPageHeaderSize + perPage - 1) / perPage;
}

std::vector<Bytes> splitDefinition(ByteView definition, std::span<const PageNo> pages)
{
    assert(pages.size() == definitionPageCount(definition.size()));
    std::vector<Bytes> images;
    ByteView rest = definition.subspan(kPageHeaderSize);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const ByteView part = rest.first(std::min(rest.size(), kPageSize - kPageHeaderSize));
        rest = rest.subspan(part.size());
        const std::size_t unused = kPageSize - kPageHeaderSize - part.size();

        Bytes image(kPageSize);
        writeU8(image, 0, kDefinitionPageType);
        writeU8(image, 1, 1);
        writeU16(image, 2, static_cast<std::uint16_t>(unused < 8 ? 0 : unused - 8));
        writeU32(image, 4, i + 1 < pages.size() ? pages[i + 1] : 0);
        writeBytes(image, kPageHeaderSize, part);
        images.push_back(std::move(image));
    }
    return images;
}

PageNo appendDefinitionPage(Bytes &definition, PageBytes page)
{
    if (page[0] != kDefinitionPageType)
        throwDamaged("a page that should hold a table definition does not");
    if (!definition.empty() && definition.size() >= statedLength(definition))
        throwDamaged("a table definition has more pages than it needs");
    appendBytes(definition, definition.empty() ? ByteView(page) : page.subspan(kPageHeaderSize));
    static_cast<void>(statedLength(definition));
    return readU32(page, 4);
}

} // namespace jet
