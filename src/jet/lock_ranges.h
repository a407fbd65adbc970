#pragma once

#include "jet/file.h"

#include <cstdint>

namespace jet
{

// Places of the locks in the lock file, far behind its end. The opener's bytes are those where the
// database program locks one byte for each of its users, so that the two keep each other out. The
// stamp stands behind that program's 255 user records of 64 bytes.

struct LockRange {
    std::uint32_t start = 0;
    std::uint32_t length = 0;
};

inline constexpr std::uint64_t kStampOffset = 255 * 64;

constexpr LockRange lockRange(LockFile::Part part)
{
    switch (part) {
    case LockFile::Part::Opener:
        return {0x10000001, 255};
    case LockFile::Part::Writer:
        return {0x7FF00000, 1};
    case LockFile::Part::Pages:
        return {0x7FF00001, 1};
    case LockFile::Part::Turn:
        return {0x7FF00003, 1};
    }
    return {};
}

} // namespace jet
