#include "jet/file/windows_range_locks.h"

namespace jet
{
namespace
{

/// Held while an exclusive lock is taken; behind all other ranges.
constexpr LockRange kGate{0x1'0000'0100, 1};

} // namespace

/// Releases the gate, whatever happens to the lock.
class RangeLocks::GateKeeper
{
public:
    explicit GateKeeper(RangeLocks &locks) : m_locks(locks) {}
    ~GateKeeper() { m_locks.release(kGate); }
    GateKeeper(const GateKeeper &) = delete;
    GateKeeper &operator=(const GateKeeper &) = delete;

private:
    RangeLocks &m_locks;
};

bool RangeLocks::tryLock(LockRange range, LockMode mode)
{
    const auto held = m_held.find(range.start);
    if (held != m_held.end() && held->second.mode == mode)
        return true;
    const bool done =
        mode == LockMode::Shared ? takeShared(range) : takeExclusive(range, held != m_held.end());
    if (done)
        m_held[range.start] = {range, mode};
    return done;
}

void RangeLocks::unlock(LockRange range)
{
    if (m_held.erase(range.start) != 0)
        release(range);
}

void RangeLocks::unlockAll()
{
    for (const auto &[start, held] : m_held)
        release(held.range);
    m_held.clear();
}

bool RangeLocks::takeShared(LockRange range)
{
    // A handle may lay a shared lock over its exclusive one; releasing takes that one first.
    const bool wasExclusive = m_held.contains(range.start);
    if (!request(range, LockMode::Shared))
        return false;
    if (wasExclusive)
        release(range);
    return true;
}

/// Windows cannot turn a shared lock into an exclusive one: it is released first. Only the holder
/// of the gate takes exclusive locks, so the shared one can be taken back, unless another program,
/// which ignores the gate, has locked the range in between.
bool RangeLocks::takeExclusive(LockRange range, bool isShared)
{
    if (!request(kGate, LockMode::Exclusive))
        return false;
    const GateKeeper keeper(*this);
    if (isShared)
        unlock(range);
    if (request(range, LockMode::Exclusive))
        return true;
    if (isShared && request(range, LockMode::Shared))
        m_held[range.start] = {range, LockMode::Shared};
    return false;
}

bool RangeLocks::request(LockRange range, LockMode mode)
{
    OVERLAPPED place = at(range.start);
    const DWORD flags =
        LOCKFILE_FAIL_IMMEDIATELY | (mode == LockMode::Exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    if (LockFileEx(m_handle.get(), flags, 0, range.length, 0, &place))
        return true;
    if (GetLastError() != ERROR_LOCK_VIOLATION && GetLastError() != ERROR_IO_PENDING)
        throwSystemError("Locking failed", GetLastError());
    return false;
}

void RangeLocks::release(LockRange range)
{
    OVERLAPPED place = at(range.start);
    UnlockFileEx(m_handle.get(), 0, range.length, 0, &place);
}

} // namespace jet
