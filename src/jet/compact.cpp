#include "jet/compact.h"

#include "jet/file/draft.h"
#include "jet/format/header_page.h"
#include "jet/format/make_definition.h"
#include "jet/store/new_database.h"
#include "jet/store/session.h"
#include "jet/store/table_builder.h"
#include "jet/store/verify.h"
#include "jet/utf8.h"

#include <algorithm>

namespace jet
{
namespace
{

/// Rows per transaction: enough to amortise the syncs, few enough for the memory.
constexpr std::uint32_t kRowsAtOnce = 20000;

void copyRows(const TableStore &from, Session &target, const Text &name)
{
    std::uint32_t copied = 0;
    for (auto row = from.rows().next({}); row; row = from.rows().next(behind(*row))) {
        if (copied % kRowsAtOnce == 0 && copied > 0) {
            target.commit();
            target.begin();
        }
        target.table(name)->insert(from.read(*row));
        ++copied;
    }
}

/// Copies what a design does not say about the columns.
void keepColumnDetails(const TableDefinition &from, TableDefinition &to)
{
    for (ColumnDefinition &column : to.columns) {
        const auto old = std::ranges::find(from.columns, column.name, &ColumnDefinition::name);
        column.sortOrder = old->sortOrder;
        column.sortVersion = old->sortVersion;
        column.compressible = old->compressible;
        column.ordinal = old->ordinal;
        const unsigned kept = old->flags & (ColumnFlag::AutoGuid | ColumnFlag::Hyperlink);
        column.flags = static_cast<std::uint8_t>(column.flags | kept);
    }
}

/// Throws Error(NotSupported) for a table that the engine cannot create.
TableDefinition definitionOfCopy(const Text &name, const TableDefinition &from)
{
    try {
        TableDefinition definition = makeDefinition(designOf(name, from));
        keepColumnDetails(from, definition);
        return definition;
    } catch (const Error &error) {
        throw Error(ErrorCode::NotSupported,
                    "Table '" + toUtf8(name) + "' cannot be written anew: " + error.what());
    }
}

/// Unreadable records would be missing in the copy.
void refuseDamaged(Pager &pager)
{
    for (const Finding &finding : verify(pager)) {
        if (!finding.isLostSpace)
            throwDamaged("it is not compacted as " + finding.reason, finding.page);
    }
}

void copyTable(Session &source, const Catalog::Entry &entry, Session &target, DateTime now)
{
    const auto from = source.tableAt(entry.definition);
    target.begin();
    const PageNo definition =
        buildTable(target.pager(), definitionOfCopy(entry.name, from->definition()));
    target.catalog().add(entry.name, definition, now);
    target.catalog().setProperties(entry.name, source.catalog().properties(entry));
    copyRows(*from, target, entry.name);
    target.table(entry.name)->continueAutonumber(from->lastAutonumber());
    target.commit();
}

void copyTables(Session &source, const std::shared_ptr<FileSystem> &files, Draft &draft,
                DateTime now)
{
    const Pager::ReadScope scope(source.pager());
    refuseDamaged(source.pager());
    source.catalog().refuseOtherObjects();
    writeNewDatabase(draft, now, files);
    Session target(files, draft.path(), {}, Pager::Use::Draft);
    for (const Catalog::Entry &entry : source.catalog().tables()) {
        if (!entry.isSystem)
            copyTable(source, entry, target, now);
    }
}

} // namespace

void compactDatabase(const std::filesystem::path &path, DateTime now)
{
    compactDatabase(path, now, makeSystemFiles());
}

void compactDatabase(const std::filesystem::path &path, DateTime now,
                     const std::shared_ptr<FileSystem> &files)
{
    Session source(files, path, {});
    source.lockForReplacing();
    Draft draft(*files, source.pager().path(), ".compact");
    copyTables(source, files, draft, now);
    source.pager().releaseName();
    draft.replaceTarget(); // while the source still keeps other openers out
}

} // namespace jet
