#include "jet/journal.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace jet
{
namespace
{

constexpr std::array<std::uint8_t, 8> kMagic{'J', 'E', 'T', 'J', 'R', 'N', '1', 0};
constexpr std::size_t kHeaderSize = 40;
constexpr std::size_t kSectors = kPageSize / kSectorSize;
constexpr std::size_t kRecordHeaderSize = 8 + 8 * kSectors;
constexpr std::size_t kRecordSize = kRecordHeaderSize + kPageSize;
constexpr std::size_t kHashSize = 8;
/// Neighbouring pages written by one call; more gains nothing.
constexpr std::size_t kRunLength = 64;

ByteView sectorOf(PageBytes page, std::size_t sector)
{
    return page.subspan(sector * kSectorSize, kSectorSize);
}

void appendRecord(Bytes &bytes, const PageChange &change)
{
    appendLittleEndian<4>(bytes, change.page);
    appendLittleEndian<4>(bytes, 0);
    for (std::size_t sector = 0; sector < kSectors; ++sector) {
        const bool existed = change.before != nullptr;
        appendLittleEndian<8>(bytes, existed ? hashBytes(sectorOf(*change.before, sector)) : 0);
    }
    appendBytes(bytes, *change.after);
}

} // namespace

std::uint64_t hashBytes(ByteView bytes, std::uint64_t seed)
{
    constexpr std::uint64_t kPrime = 0x100000001B3;
    std::uint64_t hash = seed;
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) {
        // The rotation carries the high bits back, which a word-wise multiplication never would.
        hash = std::rotl((hash ^ readLittleEndian<std::uint64_t>(bytes, at)) * kPrime, 29);
    }
    for (; at < bytes.size(); ++at)
        hash = (hash ^ bytes[at]) * kPrime;
    return hash ^ (hash >> 32);
}

void Journal::write(File &file, PageNo pagesBefore, PageNo pagesAfter, PageBytes header,
                    PageBytes globalMap, std::span<const PageChange> changes)
{
    Bytes bytes(kMagic.begin(), kMagic.end());
    appendLittleEndian<4>(bytes, pagesBefore);
    appendLittleEndian<4>(bytes, pagesAfter);
    appendLittleEndian<4>(bytes, changes.size());
    appendLittleEndian<4>(bytes, 0);
    appendLittleEndian<8>(bytes, hashBytes(header));
    appendLittleEndian<8>(bytes, hashBytes(globalMap));

    std::uint64_t hash = hashBytes(bytes);
    std::uint64_t offset = 0;
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const std::size_t recordStart = bytes.size();
        appendRecord(bytes, changes[i]);
        hash = hashBytes(ByteView(bytes).subspan(recordStart), hash);
        if ((i + 1) % kRunLength == 0) {
            file.write(offset, bytes);
            offset += bytes.size();
            bytes.clear();
        }
    }
    appendLittleEndian<kHashSize>(bytes, hash);
    file.write(offset, bytes);
}

std::optional<Journal> Journal::read(File &file)
{
    std::array<std::uint8_t, kHeaderSize> header{};
    if (file.read(0, header) != header.size() ||
        !std::equal(kMagic.begin(), kMagic.end(), header.begin()))
        return std::nullopt;
    Journal journal;
    journal.m_pagesBefore = readU32(header, 8);
    journal.m_pagesAfter = readU32(header, 12);
    const std::uint32_t records = readU32(header, 16);
    journal.m_headerHash = readLittleEndian<std::uint64_t>(header, 24);
    journal.m_globalMapHash = readLittleEndian<std::uint64_t>(header, 32);
    // Also bounds the memory that a damaged count could ask for.
    const std::uint64_t end = kHeaderSize + std::uint64_t{records} * kRecordSize;
    if (file.size() < end + kHashSize)
        return std::nullopt;

    std::uint64_t hash = hashBytes(header);
    std::array<std::uint8_t, kRecordSize> record{};
    for (std::uint32_t i = 0; i < records; ++i) {
        if (file.read(kHeaderSize + std::uint64_t{i} * kRecordSize, record) != record.size())
            return std::nullopt;
        hash = hashBytes(record, hash);
        const PageNo page = readU32(record, 0);
        if (page >= journal.m_pagesAfter)
            return std::nullopt;
        OldPage old;
        for (std::size_t sector = 0; sector < kSectors; ++sector)
            old.sectorHashes[sector] = readLittleEndian<std::uint64_t>(record, 8 + 8 * sector);
        auto content = std::make_shared<PageBuffer>();
        std::memcpy(content->data(), record.data() + kRecordHeaderSize, kPageSize);
        journal.m_oldPages.emplace(page, old);
        journal.m_pages.emplace(page, std::move(content));
    }
    std::array<std::uint8_t, kHashSize> trailer{};
    if (file.read(end, trailer) != trailer.size() ||
        readLittleEndian<std::uint64_t>(trailer, 0) != hash)
        return std::nullopt;
    return journal;
}

bool Journal::sectorsFit(PageNo page, PageBytes found) const
{
    const auto after = m_pages.find(page);
    const auto old = m_oldPages.find(page);
    for (std::size_t sector = 0; sector < kSectors; ++sector) {
        const ByteView bytes = sectorOf(found, sector);
        const ByteView wanted = sectorOf(*after->second, sector);
        if (!std::ranges::equal(bytes, wanted) &&
            hashBytes(bytes) != old->second.sectorHashes[sector])
            return false;
    }
    return true;
}

bool Journal::fits(File &database) const
{
    const std::uint64_t size = database.size();
    if (size < fileOffset(m_pagesBefore) || size > fileOffset(m_pagesAfter))
        return false;
    PageBuffer found{};
    const auto hashOf = [&](PageNo page) {
        return database.read(fileOffset(page), found) == found.size() ? hashBytes(found) : 0;
    };
    if (!m_pages.contains(0) && hashOf(0) != m_headerHash)
        return false;
    if (!m_pages.contains(1) && hashOf(1) != m_globalMapHash)
        return false;
    return std::ranges::all_of(m_pages, [&](const auto &entry) {
        const PageNo page = entry.first;
        return page >= m_pagesBefore ||
               (database.read(fileOffset(page), found) == found.size() && sectorsFit(page, found));
    });
}

void writePages(File &database, std::span<const PageChange> changes)
{
    Bytes run;
    std::uint64_t start = 0;
    for (std::size_t i = 0; i < changes.size(); ++i) {
        if (run.empty())
            start = fileOffset(changes[i].page);
        appendBytes(run, *changes[i].after);
        const bool neighbourFollows =
            i + 1 < changes.size() && changes[i + 1].page == changes[i].page + 1;
        if (!neighbourFollows || run.size() == kRunLength * kPageSize) {
            database.write(start, run);
            run.clear();
        }
    }
}

} // namespace jet
