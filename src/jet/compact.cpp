#include "jet/compact.h"

#include "jet/draft.h"
#include "jet/header_page.h"
#include "jet/new_database.h"
#include "jet/session.h"
#include "jet/table_builder.h"
#include "jet/table_design.h"
#include "jet/text_codec.h"

namespace jet
{
namespace
{

/// Enough rows per transaction to make the syncs cheap, few enough to stay in memory.
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

void copyTable(Session &source, const Catalog::Entry &entry, Session &target, DateTime now)
{
    const auto from = source.tableAt(entry.definition);
    TableDefinition definition = makeDefinition(designOf(entry.name, from->definition()));
    target.begin();
    target.catalog().add(entry.name, buildTable(target.pager(), std::move(definition)), now);
    copyRows(*from, target, entry.name);
    target.table(entry.name)->continueAutonumber(from->lastAutonumber());
    target.commit();
}

void copyTables(Session &source, const std::shared_ptr<FileSystem> &files,
                const std::filesystem::path &path, DateTime now)
{
    const Pager::ReadScope scope(source.pager());
    source.catalog().refuseOtherObjects();
    makeNewDatabase(path, now, files);
    OpenOptions options;
    options.durability = Durability::Unsynced; // synced once, as a whole
    Session target(files, path, options);
    for (const Catalog::Entry &entry : source.catalog().tables()) {
        if (!entry.isSystem)
            copyTable(source, entry, target, now);
    }
}

} // namespace

void compactDatabase(const std::filesystem::path &path, DateTime now,
                     const std::shared_ptr<FileSystem> &files)
{
    Session source(files, path, {});
    source.lockForReplacing();
    std::unique_ptr<LockFile>
        lock; // outlives the source: nobody opens the file before it is replaced
    Draft draft(*files, path, ".compact");
    copyTables(source, files, draft.path(), now);
    lock = source.pager().closeKeepingLock();
    draft.putInPlace();
}

} // namespace jet
