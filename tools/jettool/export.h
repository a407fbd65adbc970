#pragma once

#include "jet/database.h"

#include <ostream>

// What jettool prints of a table. All text is UTF-8, numbers and dates do not depend on the locale.

namespace jettool
{

/// Comma-separated: a line of column names, then a line per record. Texts, dates and bytes stand in
/// quotation marks, doubled inside; null is empty, true 1, false 0.
void writeCsv(std::ostream &out, const jet::Table &table);

enum class JsonLine {
    Record,      ///< {"column": value, ...}
    NamedRecord, ///< {"table": name, "record": {"column": value, ...}}: for several tables in one
};

/// One JSON object per line and record; null columns are null.
void writeJsonLines(std::ostream &out, const jet::Table &table, JsonLine form);

/// The statement that would make the table, in the database program's own words.
void writeSchema(std::ostream &out, const jet::Table &table);

} // namespace jettool
