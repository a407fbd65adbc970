#pragma once

#include "jet/file/pager.h"
#include "jet/format/table_definition.h"

namespace jet
{

/// Allocates pages, maps and empty indexes for a definition from makeDefinition() and writes them.
/// Returns the table's first definition page; nothing refers to it yet.
PageNo buildTable(Pager &pager, TableDefinition definition);

/// Releases every page of a table. Nothing may refer to it any more.
void destroyTable(Pager &pager, PageNo definitionPage);

} // namespace jet
