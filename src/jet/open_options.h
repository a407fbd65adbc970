#pragma once

#include <chrono>
#include <cstddef>

namespace jet
{

/// How far a finished statement is brought before the call returns.
enum class Durability {
    Synced,   ///< to the disk: survives a loss of power
    Unsynced, ///< to the system: survives the end of the process, not of the machine
};

struct OpenOptions {
    bool readOnly = false; ///< the file is not changed, whatever state it is in
    Durability durability = Durability::Synced;
    /// How long a lock of another opener is waited for before Error(InUse).
    std::chrono::milliseconds lockTimeout{2000};
    /// Pages of 4096 bytes kept in memory, besides those a running transaction changes.
    std::size_t cachedPages = 1024;
};

} // namespace jet
