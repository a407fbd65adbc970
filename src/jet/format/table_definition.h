#pragma once

#include "jet/format/bytes.h"
#include "jet/value.h"

#include <cstdint>
#include <vector>

namespace jet
{

inline constexpr std::size_t kMaxColumns = 255;
inline constexpr std::size_t kMaxIndexColumns = 10;
inline constexpr std::size_t kMaxNameLength = 64; ///< characters
/// Most bytes of a row; other programs write no longer one to a page.
inline constexpr std::size_t kMaxRowSize = 4060;
/// Most bytes of a Text or Binary value (255 characters).
inline constexpr std::size_t kMaxTextBytes = 510;
/// Sort order of text: the only one whose index keys the engine can make.
inline constexpr std::uint16_t kGeneralSortOrder = 0x0409;

/// Bits of ColumnDefinition::flags.
namespace ColumnFlag
{
inline constexpr std::uint8_t FixedLength = 0x01;
inline constexpr std::uint8_t Nullable = 0x02; ///< set on every column
inline constexpr std::uint8_t Autonumber = 0x04;
inline constexpr std::uint8_t System = 0x10;
inline constexpr std::uint8_t AutoGuid = 0x40;
inline constexpr std::uint8_t Hyperlink = 0x80; ///< Memo whose text is an address
} // namespace ColumnFlag

struct ColumnDefinition {
    Text name;
    ColumnType type = ColumnType::Long;
    std::uint16_t number = 0;        ///< identity of the column; its bit in a row's null mask
    std::uint16_t variableIndex = 0; ///< place in a row's offset table; fixed columns: not used
    std::uint16_t ordinal = 0;       ///< place for display
    std::uint16_t fixedOffset = 0;   ///< place in a row's fixed area; variable columns: 0
    std::uint16_t length = 0;        ///< bytes; Text: twice its characters; Memo, OLE: 0
    std::uint8_t flags = ColumnFlag::Nullable;
    bool compressible = false;                   ///< text may be stored compressed
    std::uint16_t sortOrder = kGeneralSortOrder; ///< Numeric: not used
    std::uint8_t sortVersion = 0;                ///< 0 is the order of Jet 4
    std::uint8_t precision = 0;                  ///< Numeric only: decimal digits
    std::uint8_t scale = 0;                      ///< Numeric only: digits after the point

    /// Its value is stored in the fixed area of a row, or in the null mask (Boolean).
    bool isFixed() const
    {
        return (flags & ColumnFlag::FixedLength) != 0 || type == ColumnType::Boolean;
    }
    bool isAutonumber() const { return (flags & ColumnFlag::Autonumber) != 0; }
    bool isLongValue() const { return type == ColumnType::Memo || type == ColumnType::Ole; }
};

/// Bits of RealIndex::flags.
namespace IndexFlag
{
inline constexpr std::uint8_t Unique = 0x01;
inline constexpr std::uint8_t IgnoreNulls = 0x02; ///< rows whose key is all null have no entry
inline constexpr std::uint8_t Required = 0x08;    ///< no column of the key may be null
inline constexpr std::uint8_t Always = 0x80;
} // namespace IndexFlag

struct IndexColumn {
    std::uint16_t column = 0; ///< column number, not its place in the list
    bool ascending = true;
    bool operator==(const IndexColumn &) const = default;
};

/// A tree of keys. Several logical indexes may share one.
struct RealIndex {
    std::vector<IndexColumn> columns; ///< 1 to kMaxIndexColumns
    RowPointer usageMap;              ///< map of the pages of the tree
    PageNo root = 0;
    std::uint8_t flags = IndexFlag::Always;
    std::uint32_t uniqueEntries = 0; ///< statistics only; other programs leave it inexact

    bool isUnique() const { return (flags & IndexFlag::Unique) != 0; }
    bool ignoresNulls() const { return (flags & IndexFlag::IgnoreNulls) != 0; }
    bool isRequired() const { return (flags & IndexFlag::Required) != 0; }
};

enum class LogicalIndexKind : std::uint8_t { Ordinary = 0, Primary = 1, Foreign = 2 };

/// What a user sees as an index.
struct LogicalIndex {
    Text name;
    std::uint32_t number = 0;    ///< unique within the table
    std::uint32_t realIndex = 0; ///< place in TableDefinition::realIndexes
    LogicalIndexKind kind = LogicalIndexKind::Ordinary;
    /// The fields of a relationship, kept as they are; these values mean "none".
    std::uint8_t relationRole = 0;
    std::uint32_t relationIndex = 0xFFFFFFFF;
    PageNo relationTable = 0;
    std::uint8_t cascadeUpdates = 4;
    std::uint8_t cascadeDeletes = 4;
};

/// Maps of the long-value pages of one column.
struct LongValueMaps {
    std::uint16_t column = 0; ///< column number
    RowPointer ownedPages;
    RowPointer freeSpacePages; ///< none in some files of other programs
};

enum class TableKind : std::uint8_t { User = 'N', System = 'S' };

struct TableDefinition {
    std::uint32_t rowCount = 0; ///< advisory in system tables of other programs
    std::uint32_t lastAutonumber = 0;
    TableKind kind = TableKind::User;
    std::uint16_t maxColumns = 0;      ///< highest column number ever used + 1; at most 255
    std::uint16_t variableColumns = 0; ///< entries of a row's offset table
    RowPointer ownedPages;             ///< map of the table's data pages
    RowPointer freeSpacePages;         ///< map of those with room for a row
    std::vector<ColumnDefinition> columns;
    std::vector<RealIndex> realIndexes;
    std::vector<LogicalIndex> logicalIndexes; ///< sorted by name in files of other programs
    std::vector<LongValueMaps> longValueMaps;

    /// Index into `columns` of the column with this number. Throws Error(Damaged) when there is
    /// none.
    std::size_t columnAt(std::uint16_t number) const;
};

/// Bytes of a value of a fixed-size type; 0 for Text, Binary, Memo and OLE. A Boolean takes no
/// bytes in a row although its definition says 1.
std::size_t fixedSize(ColumnType type);

/// Assigns numbers, ordinals, flags and places in a row to the columns of a new table, in list
/// order: fixed columns packed without gaps; variable columns ordinary ones first, then long
/// values. Keeps ColumnFlag::Autonumber. Throws Error(TooManyColumns) or, when the fixed columns
/// alone fill more than a row, Error(RecordTooLarge).
void layOutColumns(TableDefinition &table);

} // namespace jet
