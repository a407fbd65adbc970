#pragma once

#include "jet/format/table_definition.h"
#include "jet/table_design.h"

namespace jet
{

/// Throws Error(InvalidName) for a name that the database program would refuse: a valid one has 1
/// to 64 characters, none of . ! [ ] ` or control characters, and does not begin with a blank.
void checkName(const Text &name);

/// The definition of a designed table; pages and maps are not filled in. Throws
/// Error(InvalidName), Error(DuplicateItem), Error(NoSuchItem) for an index on a column that is not
/// there, Error(TooManyColumns), Error(RecordTooLarge), Error(InvalidArgument) for anything else
/// the format cannot hold.
TableDefinition makeDefinition(const TableDesign &design);

/// The design of an existing table, to create another one like it.
TableDesign designOf(const Text &name, const TableDefinition &definition);

} // namespace jet
