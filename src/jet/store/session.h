#pragma once

#include "jet/file/pager.h"
#include "jet/store/catalog.h"
#include "jet/store/table_store.h"

#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace jet
{

/// One open database: what Database, its tables and cursors share.
class Session
{
public:
    Session(std::shared_ptr<FileSystem> files, const std::filesystem::path &path,
            const OpenOptions &options, Pager::Use use = Pager::Use::Shared);

    Pager &pager() { return m_pager; }

    /// Runs a function that reads while nobody else writes. It may run twice, so it must be
    /// repeatable.
    template <typename Function>
    auto read(Function &&function)
    {
        return readWhen(isUnchanged(), std::forward<Function>(function));
    }
    /// The same; `wasUnchanged`: the result of isUnchanged() just before. Nested in another one,
    /// the outer one runs again: what it has read so far is outdated as well.
    template <typename Function>
    auto readWhen(bool wasUnchanged, Function &&function)
    {
        if (wasUnchanged && !m_pager.isReading()) {
            try {
                const Pager::Glance glance(m_pager);
                return function();
            } catch (const Pager::Overtaken &) {
                // once more, under the lock
            }
        }
        return readOnce(std::forward<Function>(function));
    }
    /// The same for a function that must not run twice.
    template <typename Function>
    auto readOnce(Function &&function)
    {
        const Pager::ReadScope scope(m_pager);
        return std::forward<Function>(function)();
    }
    /// True while everything cached from the database is current.
    bool isUnchanged() { return m_pager.isUnchanged(); }

    /// Runs a statement: all of it or, when it throws, none of it. Inside a transaction a failure
    /// after the first change breaks the transaction, which can then only be rolled back.
    template <typename Function>
    auto write(Function &&function)
    {
        const Statement statement(*this);
        if constexpr (std::is_void_v<decltype(function())>) {
            std::forward<Function>(function)();
            finishStatement();
        } else {
            auto result = std::forward<Function>(function)();
            finishStatement();
            return result;
        }
    }

    void begin();
    void commit();
    void rollback();
    bool inTransaction() const { return m_explicit; }

    /// Only inside read() or write().
    Catalog &catalog();
    /// Throws Error(NoSuchTable).
    std::shared_ptr<TableStore> table(const Text &name);
    std::shared_ptr<TableStore> tableAt(PageNo definition);

    /// Changes when tables may have been replaced or dropped.
    std::uint64_t structure() const { return m_structure + m_pager.foreignVersion(); }
    void structureChanged() { ++m_structure; }

    /// Excludes other openers until the file is closed. Throws Error(InUse).
    void lockForReplacing();
    /// Excludes other openers until the transaction ends. Throws Error(TableLocked).
    void lockOpeners();

private:
    /// Undoes a statement that was not finished.
    class Statement
    {
    public:
        explicit Statement(Session &session) : m_session(session) { m_session.startStatement(); }
        ~Statement() { m_session.abandonStatement(); }
        Statement(const Statement &) = delete;
        Statement &operator=(const Statement &) = delete;

    private:
        Session &m_session;
    };

    void startStatement();
    void finishStatement();
    void abandonStatement();
    void commitPages();
    void afterTransaction();
    void forgetWhenChanged();

    Pager m_pager;
    std::optional<Catalog> m_catalog;
    std::map<PageNo, std::shared_ptr<TableStore>> m_tables;
    std::uint64_t m_structure = 0;
    std::uint64_t m_known = 0; ///< structure() that the members above belong to
    std::uint64_t m_versionBefore = 0;
    bool m_inStatement = false;
    bool m_explicit = false;
    bool m_broken = false;
    bool m_openersLocked = false;
};

} // namespace jet
