#pragma once

#include "jet/value.h"

#include <cstdint>
#include <vector>

namespace jet
{

/// A column of a new table.
struct ColumnDesign {
    Text name;
    ColumnType type = ColumnType::Long;
    /// Text: characters, Binary: bytes, each 1 to 255; 0 stands for 255. Other types: not used.
    std::uint16_t size = 0;
    bool autonumber = false;     ///< Long only: a null gets the next number
    std::uint8_t precision = 18; ///< Numeric only: decimal digits, 1 to 28
    std::uint8_t scale = 0;      ///< Numeric only: digits after the point
};

struct IndexColumnDesign {
    Text column;
    bool descending = false;
};

/// An index of a new table. A primary index is unique and takes no nulls.
struct IndexDesign {
    Text name;
    std::vector<IndexColumnDesign> columns; ///< 1 to 10
    bool primary = false;
    bool unique = false;
    bool required = false;    ///< no column of it may be null
    bool ignoreNulls = false; ///< rows with nothing but nulls are left out
};

struct TableDesign {
    Text name;
    std::vector<ColumnDesign> columns;
    std::vector<IndexDesign> indexes;
};

} // namespace jet
