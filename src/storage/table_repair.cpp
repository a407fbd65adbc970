#include "storage/table_repair.h"
#include "storage/tabel.h"

#include <algorithm>

static jet::TableDesign scratchDesign(const jet::TableDesign &original)
{
    jet::TableDesign scratch;
    scratch.name = tabel::kScratchName;
    for (const jet::ColumnDesign &column : original.columns) {
        scratch.columns.push_back(column);
        // The numbers are copied, so the new table must not number its records.
        scratch.columns.back().autonumber = false;
    }
    scratch.indexes = {tabel::primaryIndex()};
    return scratch;
}

void rebuildTabel(jet::Database &database, jet::DateTime now)
{
    jet::Transaction transaction(database);
    {
        const jet::Table original = database.table(tabel::kName);
        jet::Cursor records = original.records();
        if (!records.first())
            throw jet::Error(jet::ErrorCode::NoCurrentRecord, "No current record.");
        jet::Table scratch = database.createTable(scratchDesign(original.design()), now);
        jet::Row row;
        do {
            records.read(row);
            scratch.appendRow(row);
        } while (records.next());
    }
    database.dropTable(tabel::kName);
    database.renameTable(tabel::kScratchName, tabel::kName, now);
    transaction.commit();
}

void dropScratchTable(jet::Database &database)
{
    const std::vector<jet::Text> tables = database.tables();
    if (std::find(tables.begin(), tables.end(), tabel::kScratchName) != tables.end())
        database.dropTable(tabel::kScratchName);
}
