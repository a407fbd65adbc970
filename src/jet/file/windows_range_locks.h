#pragma once

#include "jet/file/lock_ranges.h"
#include "jet/file/windows_handle.h"

#include <map>

namespace jet
{

/// Shared and exclusive locks on ranges of an open file.
class RangeLocks
{
public:
    /// The handle must outlive the locks.
    explicit RangeLocks(const Handle &handle) : m_handle(handle) {}

    /// Takes a lock or changes its mode; false when another opener is in the way.
    bool tryLock(LockRange range, LockMode mode);
    void unlock(LockRange range);
    /// CloseHandle() releases locks lazily.
    void unlockAll();

private:
    struct Held {
        LockRange range;
        LockMode mode;
    };
    class GateKeeper;

    bool takeShared(LockRange range);
    bool takeExclusive(LockRange range, bool isShared);
    bool request(LockRange range, LockMode mode);
    void release(LockRange range);

    const Handle &m_handle;
    std::map<std::uint64_t, Held> m_held;
};

} // namespace jet
