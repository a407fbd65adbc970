#pragma once

#include "jet/file/file.h"

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
    struct Change {
        std::uint64_t offset = 0;
        Bytes bytes;
        std::optional<std::uint64_t> newSize; ///< a resize instead of a write
    };
    struct Entry {
        Bytes content;               ///< what the program sees
        Bytes durable;               ///< what surely is on the disk
        std::vector<Change> pending; ///< changes since the last sync
        bool nameIsDurable = true;
    };
    /// A replaced name; the old state can come back until the folder is synced.
    struct Renaming {
        std::string from;
        std::string to;
        std::optional<Entry> replaced;
    };
    enum class Fault {
        None,
        Stop, ///< the operation is cut off and nothing happens any more
        Fail, ///< the operation is cut off and fails, those after it work again
    };

    std::map<std::string, Entry> files;
    std::map<std::string, Entry> removed; ///< until the folder is synced
    std::vector<Renaming> renamings;      ///< likewise
    Fault fault = Fault::None;
    ErrorCode failure = ErrorCode::DiskError;
    long faultAt = 0;          ///< number of the operation it hits
    std::size_t keptBytes = 0; ///< of a write that is hit
    long operations = 0;       ///< writes, resizes, syncs and removals so far
    std::size_t lastWrite = 0; ///< length of the write that was hit
    bool fired = false;

    void setFault(Fault kind, long at, std::size_t kept)
    {
        fault = kind;
        faultAt = at;
        keptBytes = kept;
        operations = 0;
        lastWrite = 0;
        fired = false;
    }

    /// True when the operation takes place whole; throws when it is hit.
    void operation(const std::function<void()> &whole, const std::function<void()> &part)
    {
        if (fault == Fault::Stop && fired)
            throw Error(ErrorCode::DiskError, "The program has ended.");
        if (fault != Fault::None && ++operations == faultAt) {
            fired = true;
            part();
            throw Error(failure, "The disk has failed.");
        }
        whole();
    }

    static void apply(Bytes &content, const Change &change)
    {
        if (change.newSize) {
            content.resize(*change.newSize);
            return;
        }
        content.resize(std::max<std::size_t>(content.size(), change.offset + change.bytes.size()));
        std::copy(change.bytes.begin(), change.bytes.end(),
                  content.begin() + static_cast<std::ptrdiff_t>(change.offset));
    }

    /// The program has gone, the disk keeps everything it was given.
    void endProgram()
    {
        fault = Fault::None;
        removed.clear();
        renamings.clear();
        for (auto &[name, entry] : files) {
            entry.durable = entry.content;
            entry.pending.clear();
            entry.nameIsDurable = true;
        }
    }

    /// Whether a sector that is written while the power goes may come out as anything.
    enum class Sectors { Whole, Garbled };

    /// The power has gone: of everything not synced, any sector may have been written or not.
    void losePower(std::uint32_t seed, Sectors sectors = Sectors::Whole)
    {
        std::mt19937 random(seed);
        const auto chance = [&] { return random() % 2 == 0; };
        const auto garble = [&](Bytes &content, std::uint64_t offset) {
            const std::uint64_t start = offset - offset % 512;
            const std::uint64_t end = std::min<std::uint64_t>(content.size(), start + 512);
            const bool zeros = chance();
            for (std::uint64_t at = start; at < end; ++at)
                content[at] = static_cast<std::uint8_t>(zeros ? 0 : random());
        };
        fault = Fault::None;
        for (auto &[name, entry] : removed) {
            if (chance())
                files.try_emplace(name, entry);
        }
        removed.clear();
        while (!renamings.empty() && chance()) {
            Renaming last = std::move(renamings.back());
            renamings.pop_back();
            files[last.from] = std::move(files[last.to]);
            files.erase(last.to);
            if (last.replaced)
                files[last.to] = std::move(*last.replaced);
        }
        renamings.clear();
        std::erase_if(files,
                      [&](const auto &file) { return !file.second.nameIsDurable && chance(); });
        for (auto &[name, entry] : files) {
            for (const Change &change : entry.pending) {
                if (change.newSize) {
                    if (chance())
                        apply(entry.durable, change);
                    continue;
                }
                for (std::size_t at = 0; at < change.bytes.size();) {
                    const std::size_t length = std::min<std::size_t>(
                        change.bytes.size() - at, 512 - (change.offset + at) % 512);
                    const auto start = change.bytes.begin() + static_cast<std::ptrdiff_t>(at);
                    if (chance())
                        apply(entry.durable,
                              {change.offset + at,
                               Bytes(start, start + static_cast<std::ptrdiff_t>(length)),
                               std::nullopt});
                    if (sectors == Sectors::Garbled && random() % 4 == 0)
                        garble(entry.durable, change.offset + at);
                    at += length;
                }
            }
            entry.content = entry.durable;
            entry.pending.clear();
            entry.nameIsDurable = true;
        }
    }
};

class MemoryFile final : public File
{
public:
    MemoryFile(MemoryDisk &disk, std::string name) : m_disk(disk), m_name(std::move(name)) {}

    std::size_t read(std::uint64_t offset, MutableBytes bytes) override
    {
        const Bytes &content = entry().content;
        if (offset >= content.size())
            return 0;
        const std::size_t length = std::min<std::size_t>(bytes.size(), content.size() - offset);
        std::copy_n(content.begin() + static_cast<std::ptrdiff_t>(offset), length, bytes.begin());
        return length;
    }
    void write(std::uint64_t offset, ByteView bytes) override
    {
        m_disk.operation(
            [&] {
                change({offset, Bytes(bytes.begin(), bytes.end()), {}});
            },
            [&] {
                m_disk.lastWrite = bytes.size();
                const ByteView kept = bytes.first(std::min(bytes.size(), m_disk.keptBytes));
                if (!kept.empty())
                    change({offset, Bytes(kept.begin(), kept.end()), {}});
            });
    }
    std::uint64_t size() override { return entry().content.size(); }
    void resize(std::uint64_t size) override
    {
        m_disk.operation([&] { change({0, {}, size}); }, [] {});
    }
    void sync() override
    {
        m_disk.operation(
            [&] {
                entry().durable = entry().content;
                entry().pending.clear();
            },
            [] {});
    }
    // Only one opener at a time, so the locks never have anybody to keep out.
    bool tryLock(LockPart, LockMode) override { return true; }
    void unlock(LockPart) override {}
    bool isNamed(const std::filesystem::path &path) override
    {
        return path == m_name && m_disk.files.contains(m_name);
    }

private:
    MemoryDisk::Entry &entry() { return m_disk.files[m_name]; }
    void change(const MemoryDisk::Change &change)
    {
        MemoryDisk::apply(entry().content, change);
        entry().pending.push_back(change);
    }

    MemoryDisk &m_disk;
    std::string m_name;
};

class MemoryFileSystem final : public FileSystem
{
public:
    explicit MemoryFileSystem(MemoryDisk &disk) : m_disk(disk) {}

    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        if (!exists(path)) {
            if (access == Access::Read || access == Access::Write)
                throw Error(ErrorCode::FileNotFound, "Could not find file.");
            m_disk.operation([&] { m_disk.files[path.string()].nameIsDurable = false; }, [] {});
        } else if (access == Access::CreateNew || access == Access::CreatePrivate) {
            throw Error(ErrorCode::FileExists, "The name is taken.");
        }
        return std::make_unique<MemoryFile>(m_disk, path.string());
    }
    bool exists(const std::filesystem::path &path) override
    {
        return m_disk.files.contains(path.string());
    }
    void remove(const std::filesystem::path &path) override
    {
        m_disk.operation(
            [&] {
                if (auto file = m_disk.files.extract(path.string()))
                    m_disk.removed.insert(std::move(file));
            },
            [] {});
    }
    void replace(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        m_disk.operation(
            [&] {
                auto replaced = m_disk.files.extract(to.string());
                m_disk.files[to.string()] = std::move(m_disk.files[from.string()]);
                m_disk.files.erase(from.string());
                m_disk.renamings.push_back({from.string(), to.string(), {}});
                if (replaced)
                    m_disk.renamings.back().replaced = std::move(replaced.mapped());
            },
            [] {});
    }
    void place(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        if (exists(to))
            throw Error(ErrorCode::FileExists, "The name is taken.");
        replace(from, to);
    }
    void syncFolder(const std::filesystem::path &) override
    {
        m_disk.operation(
            [&] {
                m_disk.removed.clear();
                m_disk.renamings.clear();
                for (auto &[name, entry] : m_disk.files)
                    entry.nameIsDurable = true;
            },
            [] {});
    }
    std::unique_ptr<LockFile> openLock(const std::filesystem::path &, Access) override
    {
        return nullptr;
    }

private:
    MemoryDisk &m_disk;
};

} // namespace jet
