#pragma once

#include "jet/file/file.h"

#include <algorithm>
#include <array>
#include <cstdint>

// Byte ranges of the locks. Nothing is stored there.

namespace jet
{

struct LockRange {
    std::uint64_t start = 0;
    std::uint32_t length = 0;
};

/// In the database: beyond the 2 GiB that a file can hold, as some systems refuse access to locked
/// bytes.
constexpr LockRange lockRange(LockPart part)
{
    constexpr std::uint64_t kBehindEveryFile = 0x1'0000'0000;
    return {kBehindEveryFile + static_cast<std::uint64_t>(part), 1};
}

/// In the lock file: where the database program locks one byte for each of its users.
inline constexpr LockRange kProgramUsers{0x10000001, 255};

// Content of a lock file created here, after the database program's 255 user records of 64 bytes;
// earlier versions stored a number there.
inline constexpr std::uint64_t kLockMarkOffset = std::uint64_t{255} * 64;
inline constexpr std::array<std::uint8_t, 8> kLockMark{'J', 'E', 'T', 'L', 'O', 'C', 'K', '1'};
inline constexpr std::uint64_t kLockFileSize = kLockMarkOffset + kLockMark.size();

/// True for an empty file and for one that only this engine can have created.
inline bool isOurLockFile(ByteView content)
{
    if (content.empty())
        return true;
    if (content.size() != kLockFileSize)
        return false;
    const auto isZero = [](std::uint8_t byte) { return byte == 0; };
    return std::ranges::equal(content.subspan(kLockMarkOffset), kLockMark) ||
           std::ranges::all_of(content.first(kLockMarkOffset), isZero);
}

} // namespace jet
