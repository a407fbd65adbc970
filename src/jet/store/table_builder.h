#pragma once

#include "jet/file/pager.h"
#include "jet/format/table_definition.h"

namespace jet
{

/// Gives a definition from makeDefinition() its pages, maps and empty indexes and writes them. The
/// result is the table's first definition page; nothing refers to it yet.
PageNo buildTable(Pager &pager, TableDefinition definition);

/// Gives back every page of a table. What refers to it has to be gone.
void destroyTable(Pager &pager, PageNo definitionPage);

} // namespace jet
