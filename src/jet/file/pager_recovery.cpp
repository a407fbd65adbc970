#include "jet/file/pager.h"

#include <string>

// How a pager reacts to other openers: to changes of the file, and to statements that were
// interrupted.

namespace jet
{

/// What is written to a file without a name is lost.
void Pager::requireName(const std::filesystem::path &name)
{
    if (m_file->isNamed(name))
        return;
    if (!m_files->exists(name))
        throwFileNotFound(name);
    throw Error(ErrorCode::DiskError, "'" + displayName(name) +
                                          "' was replaced by another file while it was open. "
                                          "The change was not stored.");
}

ChangeCounter Pager::storedCounter()
{
    std::array<std::uint8_t, sizeof(ChangeCounter)> bytes{};
    m_file->read(kChangeCounterOffset, bytes); // a file too short for it has no pages
    return readLittleEndian<ChangeCounter>(bytes, 0);
}

/// Called with the pages locked for reading, or by the writer.
void Pager::refresh()
{
    const ChangeCounter counter = storedCounter();
    if (counter == m_counter && !m_mustRefresh)
        return;
    m_counter = counter;
    m_mustRefresh = false;
    forgetPages();
    if (m_use == Use::Shared && m_journal.hasStatement()) {
        if (m_options.readOnly)
            loadOverlay();
        else
            recover();
    }
    refreshPageCount();
    if (m_pageCount == 0)
        throw Error(ErrorCode::NotADatabase,
                    "Unrecognized database format '" + displayName(m_path) + "'.");
}

/// Called and left with the same locks.
void Pager::recover()
{
    if (m_holdsWriter) {
        finishJournal();
        return;
    }
    m_file->unlock(LockPart::Pages); // a writer may be waiting for them
    lockWriter();
    try {
        finishJournal();
        // Under the writer's lock: another writer might be interrupted before the pages are read.
        lockPages(LockMode::Shared, "another program is writing to it");
    } catch (...) {
        unlockWriter();
        throw;
    }
    unlockWriter();
}

void Pager::finishJournal()
{
    if (const auto left = m_journal.read()) {
        switch (remedyFor(*left)) {
        case Remedy::Drop: // undone or complete, but perhaps not yet synced
            syncIfWanted();
            break;
        case Remedy::Finish:
            finish(*left);
            break;
        case Remedy::KeepAside:
            throwDamaged("a change was interrupted and cannot be finished, as the file is not the "
                         "one it belongs to any more; it is kept in '" +
                         displayName(m_journal.keepAside()) + "'");
        }
    }
    m_journal.clear();
    m_counter = storedCounter();
}

void Pager::finish(const Journal &journal)
{
    std::vector<PageChange> changes;
    for (const auto &[page, content] : journal.pages())
        changes.push_back({page, nullptr, content.get()});
    lockPages(LockMode::Exclusive, "another program is reading it");
    writePages(*m_file, changes);
    m_file->resize(fileOffset(journal.pagesAfter()));
    syncIfWanted();
    forgetPages();
    releasePages();
}

void Pager::loadOverlay()
{
    const auto left = m_journal.read();
    if (!left)
        return;
    switch (remedyFor(*left)) {
    case Remedy::Drop:
        break;
    case Remedy::Finish:
        m_overlay = left->pages();
        break;
    case Remedy::KeepAside:
        throwDamaged("a change was interrupted and cannot be finished, as the file is not the one "
                     "it belongs to any more; it is kept in '" +
                     displayName(m_journal.path()) + "'");
    }
}

/// A file whose sectors are all old or new belongs to the statement. Otherwise a loss of power may
/// have garbled a sector, another program may have written to the file, or another file may have
/// replaced it: then the check of the whole file decides.
Pager::Remedy Pager::remedyFor(const Journal &journal)
{
    const JournalTraces traces = journal.tracesIn(*m_file);
    const bool isWhereItWas = traces.lengthFits && traces.reliedOnIsSame;
    if (isWhereItWas && !traces.isTorn) {
        if (traces.isBegun || traces.headerIsTorn)
            return Remedy::Finish;
        if (!traces.headerIsForeign)
            return Remedy::Drop;
    }
    const bool isLikelyOurs = isWhereItWas && !traces.headerIsForeign;
    if (isLikelyOurs && isSoundWith(journal.pages()))
        return Remedy::Finish;
    if (isSoundWith({}))
        return Remedy::Drop;
    if (!isLikelyOurs && traces.lengthFits && isSoundWith(journal.pages()))
        return Remedy::Finish;
    return Remedy::KeepAside;
}

/// Checks the file as it would be with other content of some pages.
bool Pager::isSoundWith(const std::map<PageNo, PageRef> &pages)
{
    forgetPages();
    m_overlay = pages;
    refreshPageCount();
    ++m_readDepth; // the locks are already held
    bool isSound = false;
    try {
        isSound = m_isSound(*this);
    } catch (const Error &) {
        isSound = false;
    }
    --m_readDepth;
    forgetPages();
    return isSound;
}

} // namespace jet
