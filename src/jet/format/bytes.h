#pragma once

#include "jet/error.h"
#include "jet/row_pointer.h"
#include "jet/value.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <utility>

// Reading and writing numbers at an offset of bytes from the file. Integers are little-endian
// unless the name says otherwise. A file is untrusted input: an offset out of range throws
// Error(Damaged) instead of asserting.

namespace jet
{

inline constexpr std::size_t kPageSize = 4096;

/// Bytes of any length, not owned.
using ByteView = std::span<const std::uint8_t>;
using MutableBytes = std::span<std::uint8_t>;
/// One page, owned by the pager or the caller.
using PageBytes = std::span<const std::uint8_t, kPageSize>;
using MutablePageBytes = std::span<std::uint8_t, kPageSize>;

[[noreturn]] inline void throwDamaged(const std::string &what, PageNo page = 0)
{
    throw Error(ErrorCode::Damaged, "The database is damaged: " + what, page);
}

/// Runs a decoder that does not know its page; an Error(Damaged) without a page gets this one.
template <typename Decode>
decltype(auto) onPage(PageNo page, Decode &&decode)
{
    try {
        return std::forward<Decode>(decode)();
    } catch (const Error &error) {
        if (error.code() != ErrorCode::Damaged || error.page() != 0)
            throw;
        throw Error(error.code(), error.what(), page);
    }
}

/// Thrown by slice(); out of line, so that reading a number stays a few instructions.
[[noreturn]] void throwOutside();

/// Part of a view. Throws Error(Damaged) when it is out of range.
inline ByteView slice(ByteView bytes, std::size_t offset, std::size_t length)
{
    if (offset > bytes.size() || length > bytes.size() - offset)
        throwOutside();
    return bytes.subspan(offset, length);
}

inline MutableBytes mutableSlice(MutableBytes bytes, std::size_t offset, std::size_t length)
{
    if (offset > bytes.size() || length > bytes.size() - offset)
        throwOutside();
    return bytes.subspan(offset, length);
}

/// Unsigned little-endian number of Size bytes at an offset.
template <typename Number, std::size_t Size = sizeof(Number)>
Number readLittleEndian(ByteView bytes, std::size_t offset)
{
    const ByteView part = slice(bytes, offset, Size);
    if constexpr (std::endian::native == std::endian::little && sizeof(Number) == Size) {
        // One load instead of one per byte; pages are full of numbers.
        Number number{};
        std::memcpy(&number, part.data(), Size);
        return number;
    }
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < Size; ++i)
        number |= std::uint64_t{part[i]} << (8 * i);
    return static_cast<Number>(number);
}

template <std::size_t Size>
void writeLittleEndian(MutableBytes bytes, std::size_t offset, std::uint64_t number)
{
    const MutableBytes part = mutableSlice(bytes, offset, Size);
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(part.data(), &number, Size);
        return;
    }
    for (std::size_t i = 0; i < Size; ++i)
        part[i] = static_cast<std::uint8_t>(number >> (8 * i));
}

template <std::size_t Size>
void appendLittleEndian(Bytes &bytes, std::uint64_t number)
{
    std::array<std::uint8_t, Size> part;
    for (std::size_t i = 0; i < Size; ++i)
        part[i] = static_cast<std::uint8_t>(number >> (8 * i));
    bytes.insert(bytes.end(), part.begin(), part.end());
}

/// Most significant byte first, as in index entries.
template <std::size_t Size>
void appendBigEndian(Bytes &bytes, std::uint64_t number)
{
    std::array<std::uint8_t, Size> part;
    for (std::size_t i = 0; i < Size; ++i)
        part[i] = static_cast<std::uint8_t>(number >> (8 * (Size - 1 - i)));
    bytes.insert(bytes.end(), part.begin(), part.end());
}

inline std::uint8_t readU8(ByteView bytes, std::size_t offset)
{
    return slice(bytes, offset, 1)[0];
}
inline std::uint16_t readU16(ByteView bytes, std::size_t offset)
{
    return readLittleEndian<std::uint16_t>(bytes, offset);
}
inline std::uint32_t readU24(ByteView bytes, std::size_t offset)
{
    return readLittleEndian<std::uint32_t, 3>(bytes, offset);
}
inline std::uint32_t readU32(ByteView bytes, std::size_t offset)
{
    return readLittleEndian<std::uint32_t>(bytes, offset);
}
inline std::int64_t readI64(ByteView bytes, std::size_t offset)
{
    return readLittleEndian<std::int64_t>(bytes, offset);
}
inline double readF64(ByteView bytes, std::size_t offset)
{
    return std::bit_cast<double>(readLittleEndian<std::uint64_t>(bytes, offset));
}
inline std::uint32_t readU24BigEndian(ByteView bytes, std::size_t offset)
{
    const ByteView part = slice(bytes, offset, 3);
    return std::uint32_t{part[0]} << 16 | std::uint32_t{part[1]} << 8 | part[2];
}
inline std::uint32_t readU32BigEndian(ByteView bytes, std::size_t offset)
{
    const ByteView part = slice(bytes, offset, 4);
    return std::uint32_t{part[0]} << 24 | readU24BigEndian(part, 1);
}

inline void writeU8(MutableBytes bytes, std::size_t offset, std::uint8_t number)
{
    writeLittleEndian<1>(bytes, offset, number);
}
inline void writeU16(MutableBytes bytes, std::size_t offset, std::uint16_t number)
{
    writeLittleEndian<2>(bytes, offset, number);
}
inline void writeU32(MutableBytes bytes, std::size_t offset, std::uint32_t number)
{
    writeLittleEndian<4>(bytes, offset, number);
}
/// Copies bytes to an offset. Throws Error(Damaged) when they do not fit.
inline void writeBytes(MutableBytes bytes, std::size_t offset, ByteView source)
{
    const MutableBytes part = mutableSlice(bytes, offset, source.size());
    std::copy(source.begin(), source.end(), part.begin());
}

inline void appendBytes(Bytes &bytes, ByteView source)
{
    bytes.insert(bytes.end(), source.begin(), source.end());
}

/// The form a row pointer has in definitions, long values and overflow rows: u8 row, u24 page.
inline RowPointer readRowPointer(ByteView bytes, std::size_t offset)
{
    return {readU24(bytes, offset + 1), readU8(bytes, offset)};
}
inline std::uint32_t toNumber(RowPointer pointer)
{
    return pointer.page << 8 | pointer.row;
}
inline void writeRowPointer(MutableBytes bytes, std::size_t offset, RowPointer pointer)
{
    writeU32(bytes, offset, toNumber(pointer));
}

/// The form a row pointer has inside index entries: u24 page, most significant byte first, u8 row.
inline RowPointer readRowId(ByteView bytes, std::size_t offset)
{
    return {readU24BigEndian(bytes, offset), readU8(bytes, offset + 3)};
}
inline void appendRowId(Bytes &bytes, RowPointer pointer)
{
    appendBigEndian<4>(bytes, toNumber(pointer));
}

/// Two upper-case digits per byte.
inline std::string hexText(ByteView bytes)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const std::uint8_t byte : bytes) {
        text.push_back(kDigits[byte >> 4]);
        text.push_back(kDigits[byte & 15]);
    }
    return text;
}

} // namespace jet
