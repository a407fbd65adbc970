#include "jet/pager.h"

#include <algorithm>
#include <utility>

namespace jet
{

Pager::Pager(std::shared_ptr<FileSystem> files, const std::filesystem::path &path,
             OpenOptions options)
    : m_files(std::move(files)), m_path(m_files->resolve(path)), m_options(options),
      m_journal(*m_files, m_path, options.durability), m_cache(options.cachedPages)
{
    if (!m_files->exists(m_path))
        throwFileNotFound(m_path);
    const auto access = m_options.readOnly ? FileSystem::Access::Read : FileSystem::Access::Write;
    openLock(access);
    lock(Lock::Opener, LockFile::Mode::Shared, "the file is opened exclusively by another program");
    // Not before: while the lock was waited for, another file may have taken this one's place.
    m_file = m_files->open(m_path, access);
    m_stamp = m_lock->stamp();
    m_mustLook = true;
    const ReadScope look(*this);
    if (m_pageCount == 0)
        throw Error(ErrorCode::NotADatabase,
                    "Unrecognized database format '" + displayName(m_path) + "'.");
}

void Pager::openLock(FileSystem::Access access)
{
    const std::filesystem::path path = lockPath(m_path);
    const bool isNew = !m_files->exists(path);
    m_lock = m_files->openLock(path, access);
    if (isNew)
        m_files->matchAccess(path, m_path);
}

Pager::~Pager()
{
    rollback();
    if (!m_lock || !m_journal.wasOpened())
        return;
    // The next opener would only find an empty journal, so a failure here harms nothing.
    try {
        if (m_lock->tryLock(Lock::Writer, LockFile::Mode::Exclusive) &&
            m_lock->tryLock(Lock::Pages, LockFile::Mode::Exclusive))
            m_journal.removeWhenEmpty();
    } catch (const Error &) {
        return;
    }
}

PageRef Pager::read(PageNo page)
{
    if (m_inTransaction) {
        if (const auto changed = m_changes.find(page); changed != m_changes.end())
            return changed->second.after;
        m_reliedOn.insert(page);
    }
    return load(page);
}

std::shared_ptr<PageBuffer> Pager::load(PageNo page)
{
    if (auto cached = m_cache.find(page))
        return cached;
    if (page >= m_pageCount)
        throwDamaged("a reference leads to page " + std::to_string(page) +
                         " behind the end of the file",
                     page);
    auto content = std::make_shared<PageBuffer>();
    if (const auto waiting = m_overlay.find(page); waiting != m_overlay.end())
        *content = *waiting->second;
    else if (m_file->read(fileOffset(page), *content) != kPageSize)
        throwDamaged("the file ends inside page " + std::to_string(page), page);
    m_cache.keep(page, content);
    return content;
}

PageBuffer &Pager::edit(PageNo page)
{
    if (!m_inTransaction)
        throw Error(ErrorCode::NoTransaction, "A page was changed outside a transaction.");
    ++m_version;
    if (const auto changed = m_changes.find(page); changed != m_changes.end())
        return *changed->second.after;
    std::shared_ptr<PageBuffer> before = load(page);
    auto after = std::make_shared<PageBuffer>(*before);
    PageBuffer &result = *after;
    m_changes.emplace(page, ChangedPage{std::move(before), std::move(after)});
    return result;
}

PageNo Pager::extend()
{
    if (!m_inTransaction)
        throw Error(ErrorCode::NoTransaction, "A page was added outside a transaction.");
    constexpr PageNo kMaxPages = 0x80000; // 2 GiB, the format's limit
    if (m_pageCount >= kMaxPages)
        throw Error(ErrorCode::DiskFull, "The database has reached its largest size.");
    ++m_version;
    m_changes.emplace(m_pageCount, ChangedPage{nullptr, std::make_shared<PageBuffer>()});
    return m_pageCount++;
}

void Pager::begin()
{
    if (m_options.readOnly)
        throw Error(ErrorCode::ReadOnly, "'" + displayName(m_path) +
                                             "' is open for reading only and cannot be changed.");
    if (m_inTransaction)
        throw Error(ErrorCode::InvalidArgument, "A transaction is already running.");
    lockWriter();
    try {
        const ReadScope look(*this);
        finishJournal(); // of a writer that died before it touched the file
    } catch (...) {
        unlockWriter();
        throw;
    }
    m_pageCountBefore = m_pageCount;
    m_inTransaction = true;
}

void Pager::commit()
{
    if (!m_inTransaction)
        throw Error(ErrorCode::NoTransaction, "There is no transaction to commit.");
    if (m_changes.empty()) {
        endTransaction();
        return;
    }
    try {
        lockPages(LockFile::Mode::Exclusive, "another program is reading it");
        applyChanges();
    } catch (...) {
        rollback();
        m_mustLook = true;
        throw;
    }
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

/// Other programs leave traces on the first two pages whatever they write.
std::vector<PageWitness> Pager::witnesses()
{
    m_reliedOn.insert({kHeaderPage, kGlobalMapPage});
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
    const std::vector<PageWitness> reliedOn = witnesses();
    const auto journal = m_journal.open();
    try {
        Journal::write(*journal, m_pageCountBefore, m_pageCount, reliedOn, changes);
        syncIfWanted(*journal);
        m_lock->setStamp(++m_stamp);
    } catch (const Error &) {
        journal->resize(0);
        throw;
    }
    writeOrUndo(*journal, changes);
    emptyJournal(*journal);
}

void Pager::writeOrUndo(File &journal, const std::vector<PageChange> &changes)
{
    try {
        writePages(*m_file, changes);
        syncIfWanted(*m_file);
    } catch (const Error &failure) {
        try {
            undoChanges();
        } catch (const Error &) {
            throw Error(failure.code(), std::string(failure.what()) +
                                            " The change is kept beside the file and is finished "
                                            "as soon as the disk can be written again.");
        }
        journal.resize(0);
        throw;
    }
}

/// The statement is stored by now; a journal that cannot be emptied only repeats it.
void Pager::emptyJournal(File &journal)
{
    try {
        journal.resize(0);
    } catch (const Error &) {
        m_mustLook = true;
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
    syncIfWanted(*m_file);
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

void Pager::releasePages()
{
    if (m_readDepth > 0)
        weaken(Lock::Pages);
    else
        m_lock->unlock(Lock::Pages);
}

void Pager::beginRead()
{
    if (m_readDepth == 0 && !m_inTransaction) {
        lockPages(LockFile::Mode::Shared, "another program is writing to it");
        try {
            noticeOthers();
        } catch (...) {
            m_mustLook = true; // what was to be seen has not been seen yet
            m_lock->unlock(Lock::Pages);
            throw;
        }
    }
    ++m_readDepth;
}

void Pager::endRead()
{
    if (--m_readDepth == 0 && !m_inTransaction)
        m_lock->unlock(Lock::Pages);
}

void Pager::lock(Lock part, LockFile::Mode mode, const char *who)
{
    if (!m_lock->lock(part, mode, m_options.lockTimeout))
        throw Error(ErrorCode::InUse,
                    "Could not use '" + displayName(m_path) + "': " + std::string(who) + ".");
}

/// Readers that come one after the other would otherwise keep a writer waiting for ever.
void Pager::lockPages(LockFile::Mode mode, const char *who)
{
    lock(Lock::Turn, mode, who);
    try {
        lock(Lock::Pages, mode, who);
    } catch (...) {
        m_lock->unlock(Lock::Turn);
        throw;
    }
    m_lock->unlock(Lock::Turn);
}

void Pager::lockWriter()
{
    lock(Lock::Writer, LockFile::Mode::Exclusive, "another program is writing to it");
    m_holdsWriter = true;
}

void Pager::unlockWriter()
{
    m_lock->unlock(Lock::Writer);
    m_holdsWriter = false;
}

void Pager::syncIfWanted(File &file)
{
    if (m_options.durability == Durability::Synced)
        file.sync();
}

void Pager::forgetPages()
{
    m_cache.clear();
    m_overlay.clear();
    ++m_version;
    ++m_foreignVersion;
}

void Pager::refreshPageCount()
{
    std::uint64_t pages = m_file->size() / kPageSize;
    if (!m_overlay.empty())
        pages = std::max<std::uint64_t>(pages, m_overlay.rbegin()->first + std::uint64_t{1});
    m_pageCount = static_cast<PageNo>(std::min<std::uint64_t>(pages, 0xFFFFFF));
}

void Pager::lockOpeners()
{
    if (!m_lock->lock(Lock::Opener, LockFile::Mode::Exclusive, m_options.lockTimeout))
        throw Error(ErrorCode::TableLocked, "Could not lock a table of '" + displayName(m_path) +
                                                "': another program has the database open.");
}

std::unique_ptr<LockFile> Pager::closeKeepingLock()
{
    m_file.reset();
    return std::move(m_lock);
}

void Pager::unlockOpeners()
{
    weaken(Lock::Opener);
}

/// Called while an object is destroyed. A lock that cannot be weakened stays the stronger one:
/// others wait longer, nothing is lost.
void Pager::weaken(Lock part) noexcept
{
    try {
        m_lock->tryLock(part, LockFile::Mode::Shared);
    } catch (const Error &) {
        return;
    }
}

} // namespace jet
