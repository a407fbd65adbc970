#include "jet/file/pager.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace jet
{

Pager::Pager(std::shared_ptr<FileSystem> files, const std::filesystem::path &path,
             const OpenOptions &options, Use use, SoundnessCheck isSound)
    : m_files(std::move(files)), m_name(path), m_path(m_files->resolve(path)), m_options(options),
      m_use(use), m_isSound(std::move(isSound)), m_journal(*m_files, m_path, options),
      m_cache(options.cachedPages)
{
    const auto access = m_options.readOnly ? FileSystem::Access::Read : FileSystem::Access::Write;
    openFile(access);
    openLockFile(access);
}

Pager::~Pager()
{
    rollback();
}

void Pager::openFile(FileSystem::Access access)
{
    do {
        m_file = m_files->open(m_path, access);
        lock(LockPart::Opener, LockMode::Shared,
             "the file is opened exclusively by another program");
        // Another file may have replaced this one while the lock was waited for.
    } while (!m_file->isNamed(m_path));
}

void Pager::openLockFile(FileSystem::Access access)
{
    const std::filesystem::path path = lockPath(m_path);
    if (m_use == Use::Draft || path == m_path) // the database itself may be named name.ldb
        return;
    do {
        m_lockFile = m_files->openLock(path, access);
        if (!m_lockFile)
            return;
        if (m_lockFile->isNew())
            m_files->matchAccess(path, m_path);
        if (!m_lockFile->lock(LockMode::Shared, m_options.lockTimeout))
            throw Error(ErrorCode::InUse,
                        "Could not use '" + displayName(m_path) +
                            "': the file is opened exclusively by another program.");
        // Its last user may have removed it since it was opened.
    } while (!m_lockFile->isNamed());
}

/// Users remove lock files that look stale. The database program would then lock another one.
void Pager::renewLockFile()
{
    if (m_lockFile && !m_lockFile->isNamed())
        openLockFile(FileSystem::Access::Write);
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

void Pager::readStart(PageNo page, MutableBytes start)
{
    if (m_changes.contains(page) || m_cache.find(page)) {
        std::ranges::copy_n(read(page)->begin(), std::ssize(start), start.begin());
        return;
    }
    if (m_inTransaction)
        m_reliedOn.insert(page);
    requirePage(page);
    loadBytes(page, start);
}

std::shared_ptr<PageBuffer> Pager::load(PageNo page)
{
    if (auto cached = m_cache.find(page))
        return cached;
    requirePage(page);
    if (const PageNo run = runFrom(page); run > 1)
        return loadRun(page, run);
    auto content = std::make_shared<PageBuffer>();
    loadBytes(page, *content);
    m_cache.keep(page, content);
    return content;
}

/// How many pages to read ahead: more and more while they are read in sequence.
PageNo Pager::runFrom(PageNo page)
{
    constexpr PageNo kLongest = 16;
    constexpr PageNo kGap = 4; // pages of an index may lie between those of its table
    const bool goesOn = page > m_readUpTo && page - m_readUpTo <= kGap && m_overlay.empty();
    const PageNo pagesInFile = m_inTransaction ? m_pageCountBefore : m_pageCount;
    const auto fewOfAll = static_cast<PageNo>(m_cache.capacity() / 8);
    m_run = goesOn ? std::min({2 * m_run, kLongest, fewOfAll, pagesInFile - page}) : 1;
    m_run = std::max<PageNo>(m_run, 1);
    m_readUpTo = page + m_run - 1;
    return m_run;
}

/// Reads pages with one call and caches those that were not in memory. Returns the first one.
std::shared_ptr<PageBuffer> Pager::loadRun(PageNo first, PageNo count)
{
    Bytes bytes(count * kPageSize);
    loadBytes(first, bytes);
    std::shared_ptr<PageBuffer> result;
    for (PageNo page = first + count; page-- > first;) {
        if (page != first && m_cache.find(page))
            continue;
        result = std::make_shared<PageBuffer>();
        std::memcpy(result->data(), bytes.data() + fileOffset(page - first), kPageSize);
        m_cache.keep(page, result);
    }
    return result;
}

void Pager::requirePage(PageNo page)
{
    if (m_isGlancing)
        endGlance();
    if (page >= m_pageCount)
        throwDamaged("a reference leads to page " + std::to_string(page) +
                         " behind the end of the file",
                     page);
}

/// Reads a page that is not in memory: from the overlay or the file.
void Pager::loadBytes(PageNo page, MutableBytes start)
{
    if (const auto waiting = m_overlay.find(page); waiting != m_overlay.end())
        std::ranges::copy_n(waiting->second->begin(), std::ssize(start), start.begin());
    else if (m_file->read(fileOffset(page), start) != start.size())
        throwDamaged("the file ends inside page " + std::to_string(page), page);
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
        renewLockFile();
        refresh(); // nobody else can change it now
    } catch (...) {
        m_mustRefresh = true;
        unlockWriter();
        throw;
    }
    m_pageCountBefore = m_pageCount;
    m_inTransaction = true;
}

void Pager::releasePages()
{
    if (m_readDepth > 0)
        weaken(LockPart::Pages);
    else
        m_file->unlock(LockPart::Pages);
}

void Pager::beginRead()
{
    if (!isReading()) {
        lockPages(LockMode::Shared, "another program is writing to it");
        try {
            refresh();
        } catch (...) {
            m_mustRefresh = true; // the change has not been read yet
            m_file->unlock(LockPart::Pages);
            throw;
        }
    }
    ++m_readDepth;
}

void Pager::endRead()
{
    if (--m_readDepth == 0 && !m_inTransaction && !m_isGlancing)
        m_file->unlock(LockPart::Pages);
    if (m_readDepth == 0)
        m_isGlancing = false;
}

bool Pager::isUnchanged()
{
    return isReading() || (!m_mustRefresh && storedCounter() == m_counter);
}

void Pager::beginGlance()
{
    m_isGlancing = m_isGlancing || !isReading();
    ++m_readDepth;
}

/// Pages are only valid under the lock.
void Pager::endGlance()
{
    lockPages(LockMode::Shared, "another program is writing to it");
    m_isGlancing = false;
    if (storedCounter() != m_counter)
        throw Overtaken();
}

void Pager::lock(LockPart part, LockMode mode, const char *who)
{
    if (m_use == Use::Draft)
        return;
    if (!m_file->lock(part, mode, m_options.lockTimeout))
        throw Error(ErrorCode::InUse,
                    "Could not use '" + displayName(m_path) + "': " + std::string(who) + ".");
}

/// Otherwise readers in quick succession could starve a writer.
void Pager::lockPages(LockMode mode, const char *who)
{
    lock(LockPart::Turn, mode, who);
    try {
        lock(LockPart::Pages, mode, who);
    } catch (...) {
        m_file->unlock(LockPart::Turn);
        throw;
    }
    m_file->unlock(LockPart::Turn);
}

void Pager::lockWriter()
{
    lock(LockPart::Writer, LockMode::Exclusive, "another program is writing to it");
    m_holdsWriter = true;
}

void Pager::unlockWriter()
{
    m_file->unlock(LockPart::Writer);
    m_holdsWriter = false;
}

void Pager::syncIfWanted()
{
    if (m_options.durability == Durability::Synced)
        m_file->sync();
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
    if (m_file->lock(LockPart::Opener, LockMode::Exclusive, m_options.lockTimeout)) {
        if (!m_lockFile || m_lockFile->lock(LockMode::Exclusive, m_options.lockTimeout))
            return;
        weaken(LockPart::Opener);
    }
    throw Error(ErrorCode::TableLocked, "Could not lock a table of '" + displayName(m_path) +
                                            "': another program has the database open.");
}

void Pager::unlockOpeners()
{
    weaken(LockPart::Opener);
}

void Pager::releaseName()
{
    m_journal.release();
    m_file->releaseName();
}

/// Called by destructors. A lock that cannot be weakened stays exclusive: others wait longer,
/// nothing is lost.
void Pager::weaken(LockPart part) noexcept
{
    try {
        m_file->tryLock(part, LockMode::Shared);
        if (part == LockPart::Opener && m_lockFile)
            m_lockFile->tryLock(LockMode::Shared);
    } catch (const Error &) {
        return;
    }
}

} // namespace jet
