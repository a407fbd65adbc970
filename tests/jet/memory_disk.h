#pragma once

#include "jet/file/file.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace jet
{

/// Files in memory that can be stopped in the middle: the program's end, a failing disk, a loss of
/// power. Copies share nothing, so one state can be tried in many ways.
struct MemoryDisk {
    static constexpr std::size_t kSector = 512; ///< what a disk writes in one piece

    struct Change {
        std::uint64_t offset = 0;
        Bytes bytes;                          ///< of one sector
        std::optional<std::uint64_t> newSize; ///< a resize instead
    };
    struct Content {
        Bytes bytes;                 ///< what programs see
        Bytes durable;               ///< what surely is on the disk
        std::vector<Change> pending; ///< since the last sync
        bool madePrivate = false;
    };
    /// Which of the contents a name leads to.
    using Names = std::map<std::string, std::size_t>;
    enum class Fault {
        None,
        Stop, ///< the operation is cut off and nothing happens any more
        Fail, ///< the disk is full for this operation, those after it work again
    };

    std::vector<Content> contents;
    Names names;
    std::vector<Names> earlierNames; ///< since the folder was synced

    Fault fault = Fault::None;
    long faultAt = 0;          ///< number of the operation it hits
    std::size_t keptBytes = 0; ///< of a write that is hit
    long operations = 0;       ///< writes, resizes, syncs and changes of names so far
    std::size_t lastWrite = 0; ///< length of the write that was hit
    bool fired = false;

    // What others do at these moments.
    std::function<void(const std::string &name)> onLook; ///< a file was opened or looked for
    std::function<void(std::uint64_t offset)> onRead;

    bool has(const std::string &name) const { return names.contains(name); }
    /// What is in a file, which is made when missing.
    Bytes &operator[](const std::string &name)
    {
        const auto [entry, isNew] = names.try_emplace(name, contents.size());
        if (isNew)
            contents.emplace_back();
        return contents[entry->second].bytes;
    }

    void setFault(Fault kind, long at = 0, std::size_t kept = 0)
    {
        fault = kind;
        faultAt = at;
        keptBytes = kept;
        operations = 0;
        lastWrite = 0;
        fired = false;
    }

    /// Carries out an operation, of a write as many bytes as it is given; throws when it is hit.
    template <typename Work>
    void operation(Work &&work, std::size_t length = 0)
    {
        if (fault == Fault::Stop && fired)
            throw Error(ErrorCode::DiskError, "The program has ended.");
        if (++operations != faultAt || fault == Fault::None) {
            work(length);
            return;
        }
        fired = true;
        lastWrite = length;
        if (const std::size_t part = std::min(length, keptBytes); part > 0)
            work(part);
        if (fault == Fault::Fail)
            throw Error(ErrorCode::DiskFull, "The disk is full.");
        throw Error(ErrorCode::DiskError, "The program ends.");
    }

    template <typename Work>
    void changeNames(Work &&work)
    {
        operation([&](std::size_t) {
            earlierNames.push_back(names);
            work();
        });
    }

    static void apply(Bytes &bytes, const Change &change)
    {
        if (change.newSize) {
            bytes.resize(*change.newSize);
            return;
        }
        bytes.resize(std::max<std::size_t>(bytes.size(), change.offset + change.bytes.size()));
        writeBytes(bytes, change.offset, change.bytes);
    }

    /// The program has gone, the disk keeps everything it was given.
    void endProgram()
    {
        fault = Fault::None;
        earlierNames.clear();
        for (Content &content : contents) {
            content.durable = content.bytes;
            content.pending.clear();
        }
    }

    /// The power has gone: of what was not synced, any sector may have been written or not, with an
    /// odd seed also garbled, and any name may have changed or not.
    void losePower(std::uint32_t seed)
    {
        std::mt19937 random(seed);
        for (Content &content : contents) {
            for (const Change &change : content.pending) {
                if (random() % 2 == 0)
                    apply(content.durable, change);
                if (seed % 2 == 1 && !change.newSize && random() % 4 == 0)
                    garble(content.durable, change.offset, random);
            }
            content.bytes = content.durable;
        }
        earlierNames.push_back(std::move(names));
        names.clear();
        for (const Names &state : earlierNames) {
            for (const auto &entry : state) {
                const Names &left = earlierNames[random() % earlierNames.size()];
                if (const auto found = left.find(entry.first); found != left.end())
                    names.insert(*found);
            }
        }
        endProgram();
    }

private:
    static void garble(Bytes &bytes, std::uint64_t offset, std::mt19937 &random)
    {
        const bool zeros = random() % 2 == 0;
        const std::size_t start = offset / kSector * kSector;
        for (std::size_t at = start; at < std::min(bytes.size(), start + kSector); ++at)
            bytes[at] = static_cast<std::uint8_t>(zeros ? 0 : random());
    }
};

class MemoryFile final : public File
{
public:
    MemoryFile(MemoryDisk &disk, std::size_t number) : m_disk(disk), m_number(number) {}

    std::size_t read(std::uint64_t offset, MutableBytes bytes) override
    {
        const ByteView all(content().bytes);
        const ByteView found = all.subspan(std::min<std::size_t>(offset, all.size()));
        const std::size_t length = std::min(bytes.size(), found.size());
        std::ranges::copy(found.first(length), bytes.begin());
        if (m_disk.onRead)
            m_disk.onRead(offset);
        return length;
    }
    void write(std::uint64_t offset, ByteView bytes) override
    {
        m_disk.operation(
            [&](std::size_t length) {
                for (std::size_t at = 0, part = 0; at < length; at += part) {
                    constexpr std::size_t kSector = MemoryDisk::kSector;
                    part = std::min(length - at, kSector - (offset + at) % kSector);
                    const ByteView sector = bytes.subspan(at, part);
                    change({offset + at, Bytes(sector.begin(), sector.end()), {}});
                }
            },
            bytes.size());
    }
    std::uint64_t size() override { return content().bytes.size(); }
    void resize(std::uint64_t size) override
    {
        m_disk.operation([&](std::size_t) { change({0, {}, size}); });
    }
    void sync() override
    {
        m_disk.operation([&](std::size_t) {
            content().durable = content().bytes;
            content().pending.clear();
        });
    }
    // Openers follow each other, so the locks never have anybody to keep out.
    bool tryLock(LockPart, LockMode) override { return true; }
    void unlock(LockPart) override {}
    bool isNamed(const std::filesystem::path &path) override
    {
        const auto entry = m_disk.names.find(path.string());
        return entry != m_disk.names.end() && entry->second == m_number;
    }

private:
    MemoryDisk::Content &content() { return m_disk.contents[m_number]; }
    void change(MemoryDisk::Change change)
    {
        MemoryDisk::apply(content().bytes, change);
        content().pending.push_back(std::move(change));
    }

    MemoryDisk &m_disk;
    std::size_t m_number;
};

class MemoryFileSystem final : public FileSystem
{
public:
    explicit MemoryFileSystem(MemoryDisk &disk) : m_disk(disk) {}

    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        const std::string name = path.string();
        if (!m_disk.has(name)) {
            if (access == Access::Read || access == Access::Write)
                throwFileNotFound(path);
            m_disk.changeNames([&] { m_disk[name]; });
            m_disk.contents.back().madePrivate = access == Access::CreatePrivate;
        } else if (access == Access::CreateNew || access == Access::CreatePrivate) {
            throwFileExists(path);
        }
        auto file = std::make_unique<MemoryFile>(m_disk, m_disk.names.at(name));
        if (m_disk.onLook)
            m_disk.onLook(name);
        return file;
    }
    bool exists(const std::filesystem::path &path) override
    {
        const bool found = m_disk.has(path.string());
        if (m_disk.onLook)
            m_disk.onLook(path.string());
        return found;
    }
    void remove(const std::filesystem::path &path) override
    {
        m_disk.changeNames([&] { m_disk.names.erase(path.string()); });
    }
    void replace(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        m_disk.changeNames([&] {
            auto entry = m_disk.names.extract(from.string());
            m_disk.names[to.string()] = entry.mapped();
        });
    }
    void place(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        if (m_disk.has(to.string()))
            throwFileExists(to);
        replace(from, to);
    }
    void syncFolder(const std::filesystem::path &) override
    {
        m_disk.operation([&](std::size_t) { m_disk.earlierNames.clear(); });
    }
    std::unique_ptr<LockFile> openLock(const std::filesystem::path &, Access) override
    {
        return nullptr;
    }

private:
    MemoryDisk &m_disk;
};

} // namespace jet
