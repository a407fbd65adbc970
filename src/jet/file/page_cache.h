#pragma once

#include "jet/format/page.h"

#include <list>
#include <memory>
#include <unordered_map>
#include <utility>

namespace jet
{

/// The pages used last, up to a number of them.
class PageCache
{
public:
    explicit PageCache(std::size_t capacity) : m_capacity(capacity) {}

    std::size_t capacity() const { return m_capacity; }

    /// Null when the page is not kept.
    std::shared_ptr<PageBuffer> find(PageNo page)
    {
        const auto entry = m_entries.find(page);
        if (entry == m_entries.end())
            return nullptr;
        markUsed(entry->second);
        return entry->second.content;
    }

    /// Replaces what was kept of the page.
    void keep(PageNo page, std::shared_ptr<PageBuffer> content)
    {
        if (const auto entry = m_entries.find(page); entry != m_entries.end()) {
            entry->second.content = std::move(content);
            markUsed(entry->second);
            return;
        }
        m_uses.push_front(page);
        m_entries.emplace(page, Entry{std::move(content), m_uses.begin()});
        if (m_entries.size() > m_capacity) {
            m_entries.erase(m_uses.back());
            m_uses.pop_back();
        }
    }

    void clear()
    {
        m_entries.clear();
        m_uses.clear();
    }

private:
    struct Entry {
        std::shared_ptr<PageBuffer> content;
        std::list<PageNo>::iterator use;
    };

    void markUsed(const Entry &entry) { m_uses.splice(m_uses.begin(), m_uses, entry.use); }

    std::size_t m_capacity;
    std::unordered_map<PageNo, Entry> m_entries;
    std::list<PageNo> m_uses; ///< most recent first
};

} // namespace jet
