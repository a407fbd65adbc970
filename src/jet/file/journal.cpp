#include "jet/file/journal.h"

#include "jet/format/header_page.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace jet
{
namespace
{

constexpr std::size_t kHeaderSize = 24;
constexpr std::size_t kWitnessSize = 16;
constexpr std::size_t kSectors = kPageSize / kSectorSize;
constexpr std::size_t kRecordHeaderSize = 8 + 8 * kSectors;
constexpr std::size_t kRecordSize = kRecordHeaderSize + kPageSize;
constexpr std::size_t kHashSize = 8;
/// The file grows in steps of this: a changed size costs the next sync a second write.
constexpr std::uint64_t kGrowth = 65536;
/// Most adjacent pages written by one call; more gains nothing.
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

std::filesystem::path journalPath(std::filesystem::path database)
{
    // Appended to the whole name: files that differ only in the extension must not share a journal.
    return database += ".jrn";
}

std::uint64_t hashBytes(ByteView bytes, std::uint64_t seed)
{
    constexpr std::uint64_t kPrime = 0x100000001B3;
    std::uint64_t hash = seed;
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) {
        // The rotation carries the high bits back, which the multiplication of words does not.
        hash = std::rotl((hash ^ readLittleEndian<std::uint64_t>(bytes, at)) * kPrime, 29);
    }
    for (; at < bytes.size(); ++at)
        hash = (hash ^ bytes[at]) * kPrime;
    return hash ^ (hash >> 32);
}

std::uint64_t Journal::write(File &file, PageNo pagesBefore, PageNo pagesAfter,
                             std::span<const PageWitness> witnesses,
                             std::span<const PageChange> changes)
{
    Bytes bytes(kStatementMark.begin(), kStatementMark.end());
    appendLittleEndian<4>(bytes, pagesBefore);
    appendLittleEndian<4>(bytes, pagesAfter);
    appendLittleEndian<4>(bytes, witnesses.size());
    appendLittleEndian<4>(bytes, changes.size());
    for (const PageWitness &witness : witnesses) {
        appendLittleEndian<4>(bytes, witness.page);
        appendLittleEndian<4>(bytes, 0);
        appendLittleEndian<8>(bytes, witness.hash);
    }

    std::uint64_t hash = hashBytes(bytes);
    std::uint64_t offset = kStatementOffset;
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
    const std::uint64_t end = offset + bytes.size();
    if (end > file.size())
        bytes.resize(bytes.size() + static_cast<std::size_t>(kGrowth - end % kGrowth));
    file.write(offset, bytes);
    return end;
}

std::optional<Journal> Journal::read(File &file)
{
    if (auto journal = readAt(file, kStatementOffset, kStatementMark))
        return journal;
    return readAt(file, 0, kOldStatementMark);
}

std::optional<Journal> Journal::readAt(File &file, std::uint64_t start,
                                       std::span<const std::uint8_t, 8> mark)
{
    std::array<std::uint8_t, kHeaderSize> header{};
    if (file.read(start, header) != header.size() ||
        !std::equal(mark.begin(), mark.end(), header.begin()))
        return std::nullopt;
    Journal journal;
    journal.m_pagesBefore = readU32(header, 8);
    journal.m_pagesAfter = readU32(header, 12);
    const std::uint32_t witnesses = readU32(header, 16);
    const std::uint32_t records = readU32(header, 20);
    const std::uint64_t headSize = kHeaderSize + std::uint64_t{witnesses} * kWitnessSize;
    const std::uint64_t recordsStart = start + headSize;
    const std::uint64_t end = recordsStart + std::uint64_t{records} * kRecordSize;
    // Also bounds the memory for a damaged count.
    if (file.size() < end + kHashSize)
        return std::nullopt;

    Bytes head(static_cast<std::size_t>(headSize)); // at most the file's size
    if (file.read(start, head) != head.size())
        return std::nullopt;
    journal.readWitnesses(ByteView(head).subspan(kHeaderSize));
    std::uint64_t hash = hashBytes(head);
    std::array<std::uint8_t, kRecordSize> record{};
    for (std::uint32_t i = 0; i < records; ++i) {
        if (file.read(recordsStart + std::uint64_t{i} * kRecordSize, record) != record.size() ||
            !journal.readRecord(record))
            return std::nullopt;
        hash = hashBytes(record, hash);
    }
    std::array<std::uint8_t, kHashSize> trailer{};
    if (file.read(end, trailer) != trailer.size() ||
        readLittleEndian<std::uint64_t>(trailer, 0) != hash)
        return std::nullopt;
    return journal;
}

void Journal::readWitnesses(ByteView bytes)
{
    for (std::size_t at = 0; at < bytes.size(); at += kWitnessSize)
        m_witnesses.push_back({readU32(bytes, at), readLittleEndian<std::uint64_t>(bytes, at + 8)});
}

/// False for a page beyond the end of the database.
bool Journal::readRecord(ByteView bytes)
{
    const PageNo page = readU32(bytes, 0);
    if (page >= m_pagesAfter)
        return false;
    OldPage old;
    for (std::size_t sector = 0; sector < kSectors; ++sector)
        old.sectorHashes[sector] = readLittleEndian<std::uint64_t>(bytes, 8 + 8 * sector);
    auto content = std::make_shared<PageBuffer>();
    std::memcpy(content->data(), bytes.data() + kRecordHeaderSize, kPageSize);
    m_oldPages.emplace(page, old);
    m_pages.emplace(page, std::move(content));
    return true;
}

Journal::State Journal::stateOf(PageNo page, PageBytes found) const
{
    const PageBuffer &after = *m_pages.at(page);
    const OldPage &old = m_oldPages.at(page);
    State state = State::Old;
    for (std::size_t sector = 0; sector < kSectors; ++sector) {
        const ByteView bytes = sectorOf(found, sector);
        if (hashBytes(bytes) == old.sectorHashes[sector])
            continue;
        if (!std::ranges::equal(bytes, sectorOf(after, sector)))
            return State::Foreign;
        state = State::Begun;
    }
    return state;
}

JournalTraces Journal::tracesIn(File &database) const
{
    // Other programs may leave an incomplete page at the end of a file; no opener counts it.
    const std::uint64_t pages = database.size() / kPageSize;
    JournalTraces traces;
    traces.lengthFits = pages >= m_pagesBefore && pages <= m_pagesAfter;
    traces.isBegun = pages != m_pagesBefore;
    PageBuffer found{};
    const auto load = [&](PageNo page) {
        return database.read(fileOffset(page), found) == found.size();
    };
    for (const PageWitness &witness : m_witnesses) {
        if (load(witness.page) && hashBytes(found) == witness.hash)
            continue;
        if (witness.page == kHeaderPage)
            traces.headerIsForeign = true;
        else
            traces.reliedOnIsSame = false;
    }
    for (const auto &[page, content] : m_pages) {
        if (page >= m_pagesBefore)
            continue;
        const State state = load(page) ? stateOf(page, found) : State::Foreign;
        traces.isBegun = traces.isBegun || state == State::Begun;
        if (state != State::Foreign)
            continue;
        if (page == kHeaderPage)
            compareHeader(found, traces);
        else
            traces.isTorn = true;
    }
    return traces;
}

/// Page 0 is neither the old nor the new one.
void Journal::compareHeader(PageBytes found, JournalTraces &traces) const
{
    const ByteView sector = sectorOf(found, kChangeCounterOffset / kSectorSize);
    const bool isOldCounter =
        hashBytes(sector) ==
        m_oldPages.at(kHeaderPage).sectorHashes[kChangeCounterOffset / kSectorSize];
    const ChangeCounter counter = counterOf(found);
    const bool isKnown = isOldCounter || counter == counterOf(*m_pages.at(kHeaderPage));
    if (isKnown || !isChangeCounter(counter))
        traces.headerIsTorn = true;
    else
        traces.headerIsForeign = true;
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
