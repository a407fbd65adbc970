#include "jet/pager.h"

#include "jet/journal.h"

#include <algorithm>
#include <utility>

namespace jet
{
namespace
{

std::filesystem::path besides(std::filesystem::path path, const char *extension)
{
    return path.replace_extension(extension);
}

} // namespace

Pager::Pager(std::unique_ptr<FileSystem> files, std::filesystem::path path, OpenOptions options)
    : m_files(std::move(files)), m_path(std::move(path)), m_journalPath(besides(m_path, ".jrn")),
      m_options(options)
{
    const auto access = m_options.readOnly ? FileSystem::Access::Read : FileSystem::Access::Write;
    m_file = m_files->open(m_path, access);
    m_lock = m_files->openLock(besides(m_path, ".ldb"), access);
    lock(Lock::Opener, LockFile::Mode::Shared, "the file is opened exclusively by another program");
    m_stamp = m_lock->stamp();
    m_mustLook = true;
    const ReadScope look(*this);
    if (m_pageCount == 0)
        throw Error(ErrorCode::NotADatabase,
                    "Unrecognized database format '" + displayName(m_path) + "'.");
}

Pager::~Pager()
{
    rollback();
    if (!m_usedJournal || !m_lock)
        return;
    // The next opener would only find an empty journal, so a failure here harms nothing.
    try {
        if (m_lock->tryLock(Lock::Writer, LockFile::Mode::Exclusive) && journalIsEmpty())
            m_files->remove(m_journalPath);
    } catch (const Error &) {
        return;
    }
}

PageRef Pager::read(PageNo page)
{
    if (m_inTransaction) {
        if (const auto changed = m_changes.find(page); changed != m_changes.end())
            return changed->second.after;
    }
    return load(page);
}

std::shared_ptr<PageBuffer> Pager::load(PageNo page)
{
    if (const auto cached = m_cache.find(page); cached != m_cache.end()) {
        m_uses.splice(m_uses.begin(), m_uses, cached->second.use);
        return cached->second.content;
    }
    if (page >= m_pageCount)
        throwDamaged("a reference leads to page " + std::to_string(page) +
                         " behind the end of the file",
                     page);
    auto content = std::make_shared<PageBuffer>();
    if (const auto waiting = m_overlay.find(page); waiting != m_overlay.end())
        *content = *waiting->second;
    else if (m_file->read(fileOffset(page), *content) != kPageSize)
        throwDamaged("the file ends inside page " + std::to_string(page), page);
    keep(page, content);
    return content;
}

void Pager::keep(PageNo page, std::shared_ptr<PageBuffer> content)
{
    if (const auto cached = m_cache.find(page); cached != m_cache.end()) {
        cached->second.content = std::move(content);
        m_uses.splice(m_uses.begin(), m_uses, cached->second.use);
        return;
    }
    m_uses.push_front(page);
    m_cache.emplace(page, CachedPage{std::move(content), m_uses.begin()});
    if (m_cache.size() > m_options.cachedPages) {
        m_cache.erase(m_uses.back());
        m_uses.pop_back();
    }
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
        lock(Lock::Pages, LockFile::Mode::Exclusive, "another program is reading it");
        applyChanges();
    } catch (...) {
        rollback();
        m_mustLook = true;
        throw;
    }
    for (auto &[page, change] : m_changes)
        keep(page, std::move(change.after));
    endTransaction();
}

void Pager::applyChanges()
{
    std::vector<PageChange> changes;
    changes.reserve(m_changes.size());
    for (const auto &[page, change] : m_changes)
        changes.push_back({page, change.before.get(), change.after.get()});
    std::ranges::sort(changes, {}, &PageChange::page);

    const auto old = [&](PageNo page) {
        const auto changed = m_changes.find(page);
        return changed != m_changes.end() ? changed->second.before : PageRef(load(page));
    };
    const PageRef header = old(0);
    const PageRef globalMap = old(1);
    const auto journal = openJournal();
    File &log = *journal;
    try {
        Journal::write(log, m_pageCountBefore, m_pageCount, *header, *globalMap, changes);
        syncIfWanted(log);
        m_lock->setStamp(++m_stamp);
    } catch (const Error &) {
        log.resize(0);
        throw;
    }
    try {
        writePages(*m_file, changes);
        syncIfWanted(*m_file);
    } catch (const Error &) {
        // Should this fail as well, the journal stays, and the next writer or opener finishes the
        // statement from it.
        undoChanges();
        log.resize(0);
        throw;
    }
    emptyJournal(log);
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
    m_inTransaction = false;
    releasePages();
    unlockWriter();
}

void Pager::releasePages()
{
    if (m_readDepth > 0)
        m_lock->tryLock(Lock::Pages, LockFile::Mode::Shared);
    else
        m_lock->unlock(Lock::Pages);
}

void Pager::beginRead()
{
    if (m_readDepth == 0 && !m_inTransaction) {
        lock(Lock::Pages, LockFile::Mode::Shared, "another program is writing to it");
        try {
            noticeOthers();
        } catch (...) {
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
    } else if (!journalIsEmpty()) {
        m_lock->unlock(Lock::Pages);
        recover();
        lock(Lock::Pages, LockFile::Mode::Shared, "another program is writing to it");
    }
    refreshPageCount();
}

void Pager::recover()
{
    if (m_holdsWriter) {
        finishJournal();
        return;
    }
    lockWriter();
    try {
        finishJournal();
    } catch (...) {
        unlockWriter();
        throw;
    }
    unlockWriter();
}

void Pager::finishJournal()
{
    if (journalIsEmpty())
        return;
    const auto log = openJournal();
    const auto left = Journal::read(*log);
    if (left && left->fits(*m_file)) {
        std::vector<PageChange> changes;
        for (const auto &[page, content] : left->pages())
            changes.push_back({page, nullptr, content.get()});
        lock(Lock::Pages, LockFile::Mode::Exclusive, "another program is reading it");
        m_lock->setStamp(++m_stamp);
        writePages(*m_file, changes);
        m_file->resize(fileOffset(left->pagesAfter()));
        syncIfWanted(*m_file);
        forgetPages();
        refreshPageCount();
        releasePages();
    }
    emptyJournal(*log);
}

void Pager::loadOverlay()
{
    if (journalIsEmpty())
        return;
    const auto log = m_files->open(m_journalPath, FileSystem::Access::Read);
    const auto left = Journal::read(*log);
    if (!left || !left->fits(*m_file))
        return;
    m_overlay = left->pages();
}

bool Pager::journalIsEmpty()
{
    return !m_files->exists(m_journalPath) ||
           m_files->open(m_journalPath, FileSystem::Access::Read)->size() == 0;
}

std::unique_ptr<File> Pager::openJournal()
{
    const bool isNew = !m_files->exists(m_journalPath);
    auto journal = m_files->open(m_journalPath, FileSystem::Access::Create);
    m_usedJournal = true;
    // Without its name on the disk the journal would be lost with the power.
    if (isNew && m_options.durability == Durability::Synced)
        m_files->syncFolder(m_journalPath.parent_path());
    return journal;
}

void Pager::syncIfWanted(File &file)
{
    if (m_options.durability == Durability::Synced)
        file.sync();
}

void Pager::forgetPages()
{
    m_cache.clear();
    m_uses.clear();
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
    m_lock->tryLock(Lock::Opener, LockFile::Mode::Shared);
}

} // namespace jet
