#pragma once

#include "jet/format/bytes.h"
#include "jet/format/table_definition.h"
#include "jet/value.h"

#include <span>
#include <string_view>
#include <vector>

namespace jet
{

// Keys of an index. Comparing two keys byte by byte (unsigned, a prefix is smaller) orders them as
// the index does. Each column adds: flag 7F, then the value in an ascending byte form; null is the
// single byte 00. Descending columns have every byte complemented (so 80... and FF).

struct KeyColumn {
    ColumnType type = ColumnType::Long;
    bool ascending = true;
    /// Text and Memo: the sort order of the column.
    std::uint16_t sortOrder = kGeneralSortOrder;
    std::uint8_t sortVersion = 0;
    /// For sorting in memory only: nothing is refused. Unknown characters sort after all others,
    /// OLE and Block as Binary.
    bool inMemory = false;
};

/// The columns of a real index in key order. Throws Error(Damaged) for an unknown column number.
std::vector<KeyColumn> keyColumns(const TableDefinition &table, const RealIndex &index);

struct IndexKey {
    Bytes bytes;
    bool anyNull = false; ///< exempt from uniqueness, refused by a required index
    bool allNull = true;  ///< has no entry in an index that ignores nulls
};

/// `values` are those of the key's columns, in key order, each Null or of the column's type; a
/// Memo column takes its Text. Throws Error(NotSupported) for what the engine cannot order as the
/// database program does: OLE, descending Numeric, text of another sort order or with a character
/// outside the known part of the General order; Error(TypeConversion) for a value of another type.
IndexKey encodeIndexKey(std::span<const Value> values, std::span<const KeyColumn> columns);

/// Appends one column to a key. Throws as encodeIndexKey() does.
void appendKeyColumn(IndexKey &key, const Value &value, const KeyColumn &column);

/// The sort bytes of a text in the General order, without flag byte: characters, 01, accents and
/// specials when there are any, 00. Upper and lower case are equal, trailing spaces do not count,
/// nor do characters after the 255th. An unknown character throws Error(NotSupported), or with
/// `sortUnknown` sorts after all others.
Bytes generalSortKey(std::u16string_view text, bool sortUnknown = false);

/// True when the database program takes two names of objects or columns for the same: it ignores
/// the case of ASCII letters and of the letters in the General order.
bool sameName(std::u16string_view left, std::u16string_view right);

} // namespace jet
