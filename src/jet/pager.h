#pragma once

#include "jet/file.h"
#include "jet/journal_file.h"
#include "jet/open_options.h"
#include "jet/page_cache.h"

#include <filesystem>
#include <map>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace jet
{

// The pages of one database file: a bounded cache, transactions, and the agreement with other
// openers. A transaction collects the new content of pages in memory; commit() writes them through
// the journal (see journal.h), so the file goes from one consistent state to the next in one step
// for every other opener and across every kind of stop.
class Pager
{
public:
    /// Opens the file and, when an interrupted statement left a journal, finishes or drops it; a
    /// read-only opener only sees the file as it will be then. Throws Error(FileNotFound),
    /// Error(ReadOnly), Error(InUse), Error(NotADatabase) for a file of less than one page.
    Pager(std::shared_ptr<FileSystem> files, const std::filesystem::path &path,
          OpenOptions options);
    ~Pager();
    Pager(const Pager &) = delete;
    Pager &operator=(const Pager &) = delete;

    /// Pages of the file, with those a running transaction has added.
    PageNo pageCount() const { return m_pageCount; }

    /// The content of a page. Throws Error(Damaged) for a page behind the end of the file.
    PageRef read(PageNo page);

    /// The page for changing; the reference stays valid until the transaction ends.
    PageBuffer &edit(PageNo page);
    /// A page of zeros behind the last one.
    PageNo extend();

    /// Starts a transaction. Throws Error(ReadOnly), Error(InUse) when another opener writes.
    void begin();
    /// Writes the transaction. On failure the file is put back and the transaction rolled back; on
    /// a disk that does not even take the old pages back, the journal keeps the transaction, the
    /// error's description says so, and the next opener or statement finishes it.
    void commit();
    void rollback();
    bool inTransaction() const { return m_inTransaction; }

    /// While one lives, no other opener changes the file; pages and versions read under it belong
    /// together. May be nested. Throws Error(InUse).
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

    /// Changes with every change of any page, by this opener or another: what was worked out from
    /// pages under another version has to be worked out again.
    std::uint64_t version() const { return m_version; }
    /// Changes when definitions may have changed: after a rollback or a change by another opener.
    std::uint64_t foreignVersion() const { return m_foreignVersion; }

    /// Keeps every other opener out until unlockOpeners(). Throws Error(TableLocked).
    void lockOpeners();
    void unlockOpeners();

    /// Closes the file; the result keeps the locks that are held. Nothing else may follow.
    std::unique_ptr<LockFile> closeKeepingLock();

    const std::filesystem::path &path() const { return m_path; }

private:
    struct ChangedPage {
        PageRef before; ///< null for a new page
        std::shared_ptr<PageBuffer> after;
    };
    using Lock = LockFile::Part;

    void beginRead();
    void endRead();
    void openLock(FileSystem::Access access);
    void lock(Lock part, LockFile::Mode mode, const char *who);
    void lockPages(LockFile::Mode mode, const char *who);
    void lockWriter();
    void unlockWriter();
    void releasePages();
    void weaken(Lock part) noexcept;
    void noticeOthers();
    void recover();
    void loadOverlay();
    void finishJournal();
    void finish(const Journal &journal);
    std::vector<PageChange> sortedChanges() const;
    std::vector<PageWitness> witnesses();
    void applyChanges();
    void writeOrUndo(File &journal, const std::vector<PageChange> &changes);
    void undoChanges();
    void emptyJournal(File &journal);
    void syncIfWanted(File &file);
    void endTransaction();
    std::shared_ptr<PageBuffer> load(PageNo page);
    void forgetPages();
    void refreshPageCount();

    std::shared_ptr<FileSystem> m_files;
    std::filesystem::path m_path;
    OpenOptions m_options;
    JournalFile m_journal;
    std::unique_ptr<LockFile> m_lock;
    std::unique_ptr<File> m_file;

    PageNo m_pageCount = 0;
    PageNo m_pageCountBefore = 0; ///< when the transaction began
    std::uint64_t m_version = 1;
    std::uint64_t m_foreignVersion = 1;
    std::uint64_t m_stamp = 0;
    int m_readDepth = 0;
    bool m_inTransaction = false;
    bool m_holdsWriter = false;
    bool m_mustLook = false; ///< what is in memory may not be what is in the file

    PageCache m_cache;
    /// Pages of a journal that a read-only opener may not apply.
    std::map<PageNo, PageRef> m_overlay;
    std::unordered_map<PageNo, ChangedPage> m_changes;
    std::unordered_set<PageNo> m_reliedOn; ///< pages that the transaction has read
};

} // namespace jet
