#pragma once

#include "jet/format/bytes.h"

#include <bit>
#include <optional>

namespace jet
{

// A bitmap inside the file, least significant bit of a byte first.

inline bool testBit(ByteView bits, std::size_t bit)
{
    return (bits[bit / 8] >> (bit % 8) & 1) != 0;
}

inline void putBit(MutableBytes bits, std::size_t bit, bool value)
{
    const auto mask = static_cast<std::uint8_t>(1U << (bit % 8));
    std::uint8_t &byte = bits[bit / 8];
    byte = static_cast<std::uint8_t>(value ? byte | mask : byte & ~mask);
}

inline std::size_t lowestBit(std::uint8_t byte)
{
    return static_cast<std::size_t>(std::countr_zero(byte));
}

/// The first set bit at a position or after it.
inline std::optional<std::size_t> firstBit(ByteView bits, std::size_t from)
{
    std::size_t byte = from / 8;
    if (byte >= bits.size())
        return std::nullopt;
    const auto masked = static_cast<std::uint8_t>(bits[byte] & (0xFFU << (from % 8)));
    if (masked != 0)
        return byte * 8 + lowestBit(masked);
    ++byte;
    while (byte + 8 <= bits.size() && readLittleEndian<std::uint64_t>(bits, byte) == 0)
        byte += 8;
    for (; byte < bits.size(); ++byte) {
        if (bits[byte] != 0)
            return byte * 8 + lowestBit(bits[byte]);
    }
    return std::nullopt;
}

/// The last set bit before a position, which lies in the bitmap or at its end.
inline std::optional<std::size_t> lastBit(ByteView bits, std::size_t before)
{
    const auto highest = [](unsigned byte) {
        return static_cast<std::size_t>(std::bit_width(byte)) - 1;
    };
    std::size_t byte = before / 8;
    if (before % 8 != 0) {
        const unsigned masked = bits[byte] & ((1U << (before % 8)) - 1);
        if (masked != 0)
            return byte * 8 + highest(masked);
    }
    const auto word = [&](std::size_t at) { return readLittleEndian<std::uint64_t>(bits, at); };
    // The bitmap of a page that fills up ends with many zeros.
    while (byte >= 32 &&
           (word(byte - 8) | word(byte - 16) | word(byte - 24) | word(byte - 32)) == 0)
        byte -= 32;
    while (byte >= 8 && word(byte - 8) == 0)
        byte -= 8;
    while (byte-- > 0) {
        if (bits[byte] != 0)
            return byte * 8 + highest(bits[byte]);
    }
    return std::nullopt;
}

inline std::size_t countBits(ByteView bits)
{
    std::size_t count = 0;
    std::size_t byte = 0;
    for (; byte + 8 <= bits.size(); byte += 8) {
        // std::popcount() is a call for every word where the processor may lack the instruction.
        auto word = readLittleEndian<std::uint64_t>(bits, byte);
        word -= word >> 1 & 0x5555555555555555;
        word = (word & 0x3333333333333333) + (word >> 2 & 0x3333333333333333);
        word = (word + (word >> 4)) & 0x0F0F0F0F0F0F0F0F;
        count += static_cast<std::size_t>(word * 0x0101010101010101 >> 56);
    }
    for (; byte < bits.size(); ++byte)
        count += static_cast<std::size_t>(std::popcount(bits[byte]));
    return count;
}

} // namespace jet
