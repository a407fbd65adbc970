#include "jet/store/session.h"

#include "jet/format/header_page.h"
#include "jet/store/verify.h"

#include <algorithm>

namespace jet
{

namespace
{

bool isSound(Pager &pager)
{
    return std::ranges::all_of(verify(pager), &Finding::isLostSpace);
}

} // namespace

Session::Session(std::shared_ptr<FileSystem> files, const std::filesystem::path &path,
                 const OpenOptions &options, Pager::Use use)
    : m_pager(std::move(files), path, options, use, isSound)
{
    const Pager::ReadScope scope(m_pager);
    checkHeaderPage(*m_pager.read(kHeaderPage));
    catalog();
}

void Session::begin()
{
    if (m_explicit)
        throw Error(ErrorCode::InvalidArgument, "A transaction is already running.");
    m_pager.begin();
    m_explicit = true;
    m_broken = false;
}

void Session::commit()
{
    if (!m_explicit)
        throw Error(ErrorCode::NoTransaction, "There is no transaction to commit.");
    if (m_broken) {
        rollback();
        throw Error(ErrorCode::DiskError,
                    "The transaction was rolled back because a statement in it had failed.");
    }
    m_explicit = false;
    commitPages();
}

void Session::rollback()
{
    if (!m_explicit)
        return;
    m_explicit = false;
    m_pager.rollback();
    afterTransaction();
}

void Session::startStatement()
{
    if (m_broken)
        throw Error(ErrorCode::DiskError,
                    "A statement of the transaction has failed; it can only be rolled back.");
    if (!m_explicit)
        m_pager.begin();
    m_versionBefore = m_pager.version();
    m_inStatement = true;
}

void Session::finishStatement()
{
    m_inStatement = false;
    if (!m_explicit)
        commitPages();
}

void Session::abandonStatement()
{
    if (!m_inStatement)
        return;
    m_inStatement = false;
    if (m_explicit) {
        m_broken = m_pager.version() != m_versionBefore;
        return;
    }
    m_pager.rollback();
    afterTransaction();
}

void Session::commitPages()
{
    try {
        m_pager.commit();
    } catch (...) {
        afterTransaction();
        throw;
    }
    afterTransaction();
}

void Session::afterTransaction()
{
    m_broken = false;
    if (m_openersLocked)
        m_pager.unlockOpeners();
    m_openersLocked = false;
}

void Session::lockForReplacing()
{
    try {
        m_pager.lockOpeners();
    } catch (const Error &error) {
        if (error.code() != ErrorCode::TableLocked)
            throw;
        throw Error(ErrorCode::InUse, "Could not use '" + displayName(m_pager.path()) +
                                          "': another program has the database open.");
    }
}

void Session::lockOpeners()
{
    if (m_openersLocked)
        return;
    m_pager.lockOpeners();
    m_openersLocked = true;
}

void Session::forgetWhenChanged()
{
    if (m_known == structure())
        return;
    m_catalog.reset();
    m_tables.clear();
    m_known = structure();
}

Catalog &Session::catalog()
{
    forgetWhenChanged();
    if (!m_catalog)
        m_catalog.emplace(m_pager);
    return *m_catalog;
}

std::shared_ptr<TableStore> Session::table(const Text &name)
{
    const auto entry = catalog().find(name);
    if (!entry)
        throwNoSuchTable(name);
    return tableAt(entry->definition);
}

std::shared_ptr<TableStore> Session::tableAt(PageNo definition)
{
    forgetWhenChanged();
    std::shared_ptr<TableStore> &table = m_tables[definition];
    if (!table)
        table = std::make_shared<TableStore>(m_pager, definition);
    return table;
}

} // namespace jet
