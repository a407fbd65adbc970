#pragma once

#include "jet/file/journal.h"
#include "jet/format/bitmap.h"
#include "jet/format/data_page.h"
#include "jet/format/entry_ends.h"
#include "jet/format/index_page.h"
#include "jet/format/row_codec.h"
#include "jet/format/table_definition_codec.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

// A database file as bytes, for tests that change pages behind the engine's back: as other programs
// would have written them, or damaged.

namespace jet
{

inline Bytes bytesOf(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeFile(const std::filesystem::path &path, const Bytes &bytes)
{
    std::ofstream file(path, std::ios::binary);
    for (const std::uint8_t byte : bytes)
        file.put(static_cast<char>(byte));
}

/// Gives a changed statement of a journal the hash that belongs to it, when there is room for that.
inline void hashJournal(Bytes &journal, std::uint64_t start)
{
    constexpr std::uint64_t kHeader = 24;
    constexpr std::uint64_t kRecord = 72 + kPageSize;
    if (journal.size() < start + kHeader)
        return;
    const std::uint64_t records =
        start + kHeader + 16 * std::uint64_t{readU32(journal, start + 16)};
    const std::uint64_t end = records + kRecord * readU32(journal, start + 20);
    if (end + 8 > journal.size())
        return;
    const ByteView bytes(journal);
    std::uint64_t hash = hashBytes(bytes.subspan(start, records - start));
    for (std::uint64_t at = records; at < end; at += kRecord)
        hash = hashBytes(bytes.subspan(at, kRecord), hash);
    writeLittleEndian<8>(journal, end, hash);
}

/// The pages of a file whose first user table is the one that is changed.
class FileImage
{
public:
    FileImage() = default;
    explicit FileImage(Bytes bytes) : m_bytes(std::move(bytes))
    {
        // the first definition behind those of the system
        for (m_definition = 6; page(m_definition)[0] != 2;)
            ++m_definition;
    }

    const Bytes &bytes() const { return m_bytes; }
    PageNo definitionPage() const { return m_definition; }
    MutablePageBytes page(PageNo number)
    {
        return MutableBytes(m_bytes).subspan(number * kPageSize).first<kPageSize>();
    }
    PageNo firstDataPage()
    {
        PageNo number = m_definition + 1;
        while (page(number)[0] != 1 || readU32(page(number), 4) != m_definition)
            ++number;
        return number;
    }
    TableDefinition definition()
    {
        Bytes bytes;
        appendDefinitionPage(bytes, page(m_definition));
        return parseTableDefinition(bytes);
    }
    void setDefinition(const TableDefinition &table)
    {
        const Bytes bytes = encodeTableDefinition(table);
        const std::vector<PageNo> pages{m_definition};
        writeBytes(page(m_definition), 0, splitDefinition(bytes, pages).front());
    }
    IndexPage indexPage(PageNo number)
    {
        auto copy = std::make_shared<PageBuffer>();
        std::ranges::copy(page(number), copy->begin());
        return {copy, number, m_definition};
    }
    /// Bit of an inline map; for the global map 1 means free.
    void setMapBit(RowPointer map, PageNo number, bool value)
    {
        const Slot slot = slotAt(page(map.page), map.page, map.row);
        putBit(page(map.page).subspan(slot.start + 5), number, value);
    }
    /// Moves a row to another slot of its page, and leaves a pointer in its own.
    void leavePointerBehind(PageNo data, std::size_t slot)
    {
        const ByteView row = rowAt(page(data), data, slot);
        const Bytes image(row.begin(), row.end());
        const std::uint8_t moved = insertRow(page(data), image).value();
        setFlag(data, moved, SlotFlag::Moved);
        setFlag(data, slot, SlotFlag::Pointer);
        writeRowPointer(page(data), slotAt(page(data), data, slot).start, {data, moved});
    }
    /// Makes a page a leaf as other programs fill it: all entries but the first without the prefix
    /// they share.
    void writeCompressedLeaf(PageNo number, const std::vector<Bytes> &entries)
    {
        const MutablePageBytes leaf = page(number);
        const auto shared = std::ranges::mismatch(entries.front(), entries.back()).in1;
        const auto prefix = shared - entries.front().begin();
        writeLeaf(leaf, m_definition, {}, {});
        std::size_t end = 0;
        for (const Bytes &entry : entries) {
            const ByteView stored =
                ByteView(entry).subspan(end == 0 ? 0 : static_cast<std::size_t>(prefix));
            writeBytes(leaf, kEntryArea + end, stored);
            end += stored.size();
            putBit(leaf.subspan(kEndsOffset), end, true);
        }
        writeU16(leaf, 2, static_cast<std::uint16_t>(kEntryAreaSize - end));
        writeU16(leaf, 24, static_cast<std::uint16_t>(prefix));
    }

private:
    void setFlag(PageNo data, std::size_t slot, unsigned flag)
    {
        const std::size_t place = kDataPageHeader + 2 * slot;
        writeU16(page(data), place, static_cast<std::uint16_t>(readU16(page(data), place) | flag));
    }

    Bytes m_bytes;
    PageNo m_definition = 0;
};

} // namespace jet
