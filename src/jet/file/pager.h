#pragma once

#include "jet/file/file.h"
#include "jet/file/journal_file.h"
#include "jet/file/page_cache.h"
#include "jet/format/header_page.h"
#include "jet/open_options.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace jet
{

// The pages of one database file: an LRU cache, transactions, and the coordination with other
// openers. A transaction collects the new content of pages in memory; commit() writes them through
// the journal (see journal.h), so that the file changes atomically for every other opener and after
// every kind of interruption.
//
// Each commit increments the change counter in page 0, and page 0 is the first page it writes.
// Cached pages are therefore valid while the counter has the value they were read under; pages are
// loaded only under the lock that excludes writers.
class Pager
{
public:
    enum class Use {
        Shared,
        Draft, ///< a file of this opener alone, discarded when interrupted: no locks, no journal
    };
    /// True when all pages fit together.
    using SoundnessCheck = std::function<bool(Pager &)>;

    /// Opens the file. The first access finishes or drops an interrupted statement; a read-only
    /// opener only sees the file as it would be after that. `isSound` decides where the journal
    /// alone does not prove that it belongs to the file. Throws Error(FileNotFound),
    /// Error(ReadOnly), Error(InUse).
    Pager(std::shared_ptr<FileSystem> files, const std::filesystem::path &path,
          const OpenOptions &options, Use use, SoundnessCheck isSound);
    ~Pager();
    Pager(const Pager &) = delete;
    Pager &operator=(const Pager &) = delete;

    /// Pages of the file, including those that a running transaction has added.
    PageNo pageCount() const { return m_pageCount; }

    /// The content of a page. Throws Error(Damaged) for a page beyond the end of the file.
    PageRef read(PageNo page);

    /// Reads the first bytes of a page without caching it. Throws as read() does.
    void readStart(PageNo page, MutableBytes start);
    /// Removes a page from the witnesses of the transaction, which releases it: after an
    /// interruption the page may hold anything.
    void disregard(PageNo page) { m_reliedOn.erase(page); }

    /// The page for writing; the reference is valid until the transaction ends.
    PageBuffer &edit(PageNo page);
    /// Appends a page of zeros.
    PageNo extend();

    /// Starts a transaction. Throws Error(ReadOnly), Error(InUse) when another opener writes, and
    /// what ReadScope throws.
    void begin();
    /// Writes the transaction. On failure the file is restored and the transaction rolled back;
    /// when the disk refuses even that, the journal keeps the transaction, the error's description
    /// says so, and the next opener or statement finishes it. Throws Error(FileNotFound) or
    /// Error(DiskError) when the name no longer leads to the file.
    void commit();
    void rollback();
    bool inTransaction() const { return m_inTransaction; }

    /// While one exists, no other opener changes the file; pages and versions read under it are
    /// consistent. May be nested. Throws Error(InUse), Error(NotADatabase) for a file of less than
    /// one page, Error(Damaged) when an interrupted statement can be neither finished nor dropped.
    class ReadScope
    {
    public:
        explicit ReadScope(Pager &pager) : m_pager(pager) { m_pager.beginRead(); }
        ~ReadScope() { m_pager.endRead(); }
        ReadScope(const ReadScope &) = delete;
        ReadScope &operator=(const ReadScope &) = delete;

    private:
        Pager &m_pager;
    };

    /// The same, but takes the lock only when a page must be loaded. Precondition: isUnchanged().
    /// If the file has changed by then, loading throws Overtaken, and what was read so far is
    /// outdated.
    class Glance
    {
    public:
        explicit Glance(Pager &pager) : m_pager(pager) { m_pager.beginGlance(); }
        ~Glance() { m_pager.endRead(); }
        Glance(const Glance &) = delete;
        Glance &operator=(const Glance &) = delete;

    private:
        Pager &m_pager;
    };
    struct Overtaken {
    };
    /// True if nobody has changed the file since its last access.
    bool isUnchanged();
    bool isReading() const { return m_readDepth > 0 || m_inTransaction; }

    /// Changes with every change of any page, by this opener or another: what was computed from
    /// pages under another version is outdated.
    std::uint64_t version() const { return m_version; }
    /// Changes when definitions may have changed: after a rollback or a change by another opener.
    std::uint64_t foreignVersion() const { return m_foreignVersion; }

    /// Excludes other openers until unlockOpeners(). Throws Error(TableLocked).
    void lockOpeners();
    void unlockOpeners();

    /// Lets another file take the name; the locks are kept where the system allows it. Only the
    /// destructor may follow.
    void releaseName();

    const std::filesystem::path &path() const { return m_path; }

private:
    struct ChangedPage {
        PageRef before; ///< null for a new page
        std::shared_ptr<PageBuffer> after;
    };
    enum class Remedy { Drop, Finish, KeepAside };

    void openFile(FileSystem::Access access);
    void openLockFile(FileSystem::Access access);
    void renewLockFile();
    void requireName(const std::filesystem::path &name);
    void beginRead();
    void beginGlance();
    void endRead();
    void endGlance();
    void lock(LockPart part, LockMode mode, const char *who);
    void lockPages(LockMode mode, const char *who);
    void lockWriter();
    void unlockWriter();
    void releasePages();
    void weaken(LockPart part) noexcept;
    ChangeCounter storedCounter();
    void refresh();
    void recover();
    void loadOverlay();
    void finishJournal();
    void finish(const Journal &journal);
    Remedy remedyFor(const Journal &journal);
    bool isSoundWith(const std::map<PageNo, PageRef> &pages);
    std::vector<PageChange> sortedChanges() const;
    std::vector<PageWitness> witnesses();
    void applyChanges();
    void writeOrUndo(const std::vector<PageChange> &changes);
    void undoChanges();
    void syncIfWanted();
    void endTransaction();
    std::shared_ptr<PageBuffer> load(PageNo page);
    void loadBytes(PageNo page, MutableBytes start);
    void requirePage(PageNo page);
    PageNo runFrom(PageNo page);
    std::shared_ptr<PageBuffer> loadRun(PageNo first, PageNo count);
    void forgetPages();
    void refreshPageCount();

    std::shared_ptr<FileSystem> m_files;
    std::filesystem::path m_name; ///< as it was given
    std::filesystem::path m_path; ///< where it led
    OpenOptions m_options;
    Use m_use;
    SoundnessCheck m_isSound;
    JournalFile m_journal;
    std::unique_ptr<File> m_file;
    std::unique_ptr<LockFile> m_lockFile; ///< null where there can be none

    PageNo m_pageCount = 0;
    PageNo m_pageCountBefore = 0; ///< when the transaction began
    std::uint64_t m_version = 1;
    std::uint64_t m_foreignVersion = 1;
    ChangeCounter m_counter = 0; ///< that the pages in memory belong to
    int m_readDepth = 0;
    bool m_isGlancing = false; ///< reading without a lock
    bool m_inTransaction = false;
    bool m_holdsWriter = false;
    bool m_mustRefresh = true; ///< the cache may be outdated

    PageCache m_cache;
    PageNo m_readUpTo = 0; ///< the last page that was read from the file
    PageNo m_run = 1;      ///< pages that were read together then
    /// Pages of a journal that a read-only opener cannot apply to the file.
    std::map<PageNo, PageRef> m_overlay;
    std::unordered_map<PageNo, ChangedPage> m_changes;
    std::unordered_set<PageNo> m_reliedOn; ///< pages that the transaction has read
};

} // namespace jet
