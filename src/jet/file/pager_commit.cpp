#include "jet/file/pager.h"

#include <algorithm>
#include <chrono>

// The end of a transaction: its pages reach the file, or the file is as it was.

namespace jet
{

void Pager::commit()
{
    if (!m_inTransaction)
        throw Error(ErrorCode::NoTransaction, "There is no transaction to commit.");
    if (m_changes.empty()) {
        endTransaction();
        return;
    }
    try {
        const auto now = std::chrono::system_clock::now().time_since_epoch().count();
        countChange(edit(kHeaderPage), m_use == Use::Draft ? 0 : static_cast<std::uint16_t>(now));
        lockPages(LockMode::Exclusive, "another program is reading it");
        requireName(m_name);
        if (m_path != m_name)
            requireName(m_path); // where the next opener looks for the journal
        applyChanges();
    } catch (...) {
        rollback();
        m_mustRefresh = true;
        throw;
    }
    m_counter = counterOf(*m_changes.at(kHeaderPage).after);
    for (auto &[page, change] : m_changes)
        m_cache.keep(page, std::move(change.after));
    endTransaction();
}

std::vector<PageChange> Pager::sortedChanges() const
{
    std::vector<PageChange> changes;
    changes.reserve(m_changes.size());
    for (const auto &[page, change] : m_changes)
        changes.push_back({page, change.before.get(), change.after.get()});
    std::ranges::sort(changes, {}, &PageChange::page);
    return changes;
}

/// Whatever other programs write, they change page 1, or page 0, which is always a record.
std::vector<PageWitness> Pager::witnesses()
{
    m_reliedOn.insert(kGlobalMapPage);
    std::vector<PageWitness> result;
    for (const PageNo page : m_reliedOn) {
        if (!m_changes.contains(page))
            result.push_back({page, hashBytes(*load(page))});
    }
    return result;
}

void Pager::applyChanges()
{
    const std::vector<PageChange> changes = sortedChanges();
    if (m_use == Use::Draft) {
        writePages(*m_file, changes);
        return;
    }
    m_journal.write(m_pageCountBefore, m_pageCount, witnesses(), changes);
    writeOrUndo(changes);
    m_journal.clear();
}

void Pager::writeOrUndo(const std::vector<PageChange> &changes)
{
    try {
        writePages(*m_file, changes);
        syncIfWanted();
    } catch (const Error &failure) {
        try {
            undoChanges();
        } catch (const Error &) {
            throw Error(failure.code(), std::string(failure.what()) +
                                            " The change is kept beside the file and is finished "
                                            "as soon as the disk can be written again.");
        }
        m_journal.clear();
        throw;
    }
}

void Pager::undoChanges()
{
    std::vector<PageChange> changes;
    for (const auto &[page, change] : m_changes) {
        if (change.before)
            changes.push_back({page, nullptr, change.before.get()});
    }
    std::ranges::sort(changes, {}, &PageChange::page);
    writePages(*m_file, changes);
    m_file->resize(fileOffset(m_pageCountBefore));
    syncIfWanted();
}

void Pager::rollback()
{
    if (!m_inTransaction)
        return;
    m_pageCount = m_pageCountBefore;
    ++m_version;
    ++m_foreignVersion;
    endTransaction();
}

void Pager::endTransaction()
{
    m_changes.clear();
    m_reliedOn.clear();
    m_inTransaction = false;
    releasePages();
    unlockWriter();
}

} // namespace jet
