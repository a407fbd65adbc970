#include "jet/pager.h"

#include <string>

// What a pager does about the work of others: changes to the file, and statements that their
// writers could not finish.

namespace jet
{

void Pager::noticeOthers()
{
    const std::uint64_t stamp = m_lock->stamp();
    if (stamp == m_stamp && !m_mustLook)
        return;
    m_stamp = stamp;
    m_mustLook = false;
    forgetPages();
    if (m_options.readOnly) {
        loadOverlay();
    } else if (!m_journal.isEmpty()) {
        recover();
    }
    refreshPageCount();
}

/// Called and left with the pages locked for reading.
void Pager::recover()
{
    m_lock->unlock(Lock::Pages); // a writer may be waiting for them
    const bool heldWriter = m_holdsWriter;
    if (!heldWriter)
        lockWriter();
    try {
        finishJournal();
        // While nobody else can write: another writer might stop halfway before the pages are read.
        lockPages(LockFile::Mode::Shared, "another program is writing to it");
    } catch (...) {
        if (!heldWriter)
            unlockWriter();
        throw;
    }
    if (!heldWriter)
        unlockWriter();
}

void Pager::finishJournal()
{
    if (m_journal.isEmpty())
        return;
    const auto log = m_journal.open();
    const auto left = Journal::read(*log);
    if (left && left->mustBeFinished(*m_file))
        finish(*left);
    else if (left) // undone or written whole, but perhaps only in the system's memory so far
        syncIfWanted(*m_file);
    emptyJournal(*log);
}

void Pager::finish(const Journal &journal)
{
    std::vector<PageChange> changes;
    for (const auto &[page, content] : journal.pages())
        changes.push_back({page, nullptr, content.get()});
    lockPages(LockFile::Mode::Exclusive, "another program is reading it");
    m_lock->setStamp(++m_stamp);
    writePages(*m_file, changes);
    m_file->resize(fileOffset(journal.pagesAfter()));
    syncIfWanted(*m_file);
    forgetPages();
    refreshPageCount();
    releasePages();
}

void Pager::loadOverlay()
{
    if (m_journal.isEmpty())
        return;
    const auto left = m_journal.read();
    if (left && left->mustBeFinished(*m_file))
        m_overlay = left->pages();
}

} // namespace jet
