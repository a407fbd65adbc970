#include "jet/database.h"

#include "jet/format/make_definition.h"
#include "jet/store/new_database.h"
#include "jet/store/session.h"
#include "jet/store/table_builder.h"
#include "jet/store/verify.h"

namespace jet
{
namespace
{

/// The entry of a table that may be dropped or renamed. Throws Error(NoSuchTable) otherwise.
Catalog::Entry changeableTable(Catalog &catalog, const Text &name)
{
    const auto entry = catalog.find(name);
    if (!entry || entry->isSystem)
        throwNoSuchTable(name);
    return *entry;
}

} // namespace

Database::Database(std::shared_ptr<Session> session) : m_session(std::move(session)) {}
Database::Database(Database &&) noexcept = default;
Database &Database::operator=(Database &&) noexcept = default;
Database::~Database() = default;

Database Database::open(const std::filesystem::path &path, const OpenOptions &options)
{
    return open(path, options, makeSystemFiles());
}

Database Database::open(const std::filesystem::path &path, const OpenOptions &options,
                        std::shared_ptr<FileSystem> files)
{
    return Database(std::make_shared<Session>(std::move(files), path, options));
}

Database Database::create(const std::filesystem::path &path, DateTime now,
                          const OpenOptions &options, const std::vector<TableDesign> &tables)
{
    makeNewDatabase(path, now, makeSystemFiles(), tables);
    return open(path, options);
}

const std::filesystem::path &Database::path() const
{
    return m_session->pager().path();
}

std::vector<Text> Database::tables() const
{
    return m_session->read([&] {
        std::vector<Text> names;
        for (const Catalog::Entry &entry : m_session->catalog().tables()) {
            if (!entry.isSystem)
                names.push_back(entry.name);
        }
        return names;
    });
}

Table Database::table(const Text &name) const
{
    return m_session->read([&]() -> Table {
        Table table(m_session, name);
        table.store();
        return table;
    });
}

Table Database::createTable(const TableDesign &design, DateTime now)
{
    TableDefinition definition = makeDefinition(design);
    m_session->write([&] {
        Catalog &catalog = m_session->catalog();
        catalog.checkIsFree(design.name);
        const PageNo page = buildTable(m_session->pager(), std::move(definition));
        catalog.add(design.name, page, now);
        m_session->structureChanged();
    });
    return {m_session, design.name}; // the table is stored, so nothing is read
}

void Database::dropTable(const Text &name)
{
    m_session->write([&] {
        Catalog &catalog = m_session->catalog();
        const Catalog::Entry entry = changeableTable(catalog, name);
        m_session->lockOpeners();
        catalog.remove(entry);
        destroyTable(m_session->pager(), entry.definition);
        m_session->structureChanged();
    });
}

void Database::renameTable(const Text &name, const Text &newName, DateTime now)
{
    checkName(newName);
    m_session->write([&] {
        Catalog &catalog = m_session->catalog();
        const Catalog::Entry entry = changeableTable(catalog, name);
        m_session->lockOpeners();
        catalog.rename(entry, newName, now);
        m_session->structureChanged();
    });
}

std::vector<Finding> Database::check() const
{
    return m_session->read([&] { return verify(m_session->pager()); });
}

Transaction::Transaction(Database &database) : m_session(database.m_session)
{
    m_session->begin();
}

Transaction::~Transaction()
{
    rollback();
}

void Transaction::commit()
{
    if (!m_running)
        throw Error(ErrorCode::NoTransaction, "The transaction has ended already.");
    m_running = false;
    m_session->commit();
}

void Transaction::rollback()
{
    if (m_running)
        m_session->rollback();
    m_running = false;
}

struct Snapshot::Scope {
    explicit Scope(const std::shared_ptr<Session> &owner) : session(owner), scope(owner->pager()) {}
    std::shared_ptr<Session> session;
    Pager::ReadScope scope;
};

Snapshot::Snapshot(const Database &database) : m_scope(std::make_unique<Scope>(database.m_session))
{
}
Snapshot::~Snapshot() = default;

} // namespace jet
