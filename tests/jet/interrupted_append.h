#pragma once

#include "jet/file/file.h"
#include "tests/jet/file_image.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <utility>

namespace jet
{

/// The system's files, for what happens between two looks at them.
class SystemFilesBut : public FileSystem
{
public:
    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        return m_files->open(path, access);
    }
    bool exists(const std::filesystem::path &path) override { return m_files->exists(path); }
    void remove(const std::filesystem::path &path) override { m_files->remove(path); }
    void replace(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        m_files->replace(from, to);
    }
    void place(const std::filesystem::path &from, const std::filesystem::path &to) override
    {
        m_files->place(from, to);
    }
    void syncFolder(const std::filesystem::path &folder) override { m_files->syncFolder(folder); }
    std::unique_ptr<LockFile> openLock(const std::filesystem::path &path, Access access) override
    {
        return m_files->openLock(path, access);
    }

private:
    std::unique_ptr<FileSystem> m_files = makeSystemFiles();
};

/// An open file that differs from the system's in what a test makes of it.
class SystemFileBut : public File
{
public:
    explicit SystemFileBut(std::unique_ptr<File> file) : m_file(std::move(file)) {}

    std::size_t read(std::uint64_t offset, MutableBytes bytes) override
    {
        return m_file->read(offset, bytes);
    }
    void write(std::uint64_t offset, ByteView bytes) override { m_file->write(offset, bytes); }
    std::uint64_t size() override { return m_file->size(); }
    void resize(std::uint64_t size) override { m_file->resize(size); }
    void sync() override { m_file->sync(); }
    bool tryLock(LockPart part, LockMode mode) override { return m_file->tryLock(part, mode); }
    void unlock(LockPart part) override { m_file->unlock(part); }
    bool isNamed(const std::filesystem::path &path) override { return m_file->isNamed(path); }

private:
    std::unique_ptr<File> m_file;
};

/// Takes two writes, page 0 and what follows; the program has ended then.
class TornFile final : public SystemFileBut
{
public:
    using SystemFileBut::SystemFileBut;

    void write(std::uint64_t offset, ByteView bytes) override
    {
        if (++m_writes > 2)
            end();
        SystemFileBut::write(offset, bytes);
    }
    void resize(std::uint64_t) override { end(); }
    void sync() override { end(); }

private:
    [[noreturn]] static void end() { throw Error(ErrorCode::DiskError, "The program has ended."); }

    int m_writes = 0;
};

class FilesOfAStoppedProgram final : public SystemFilesBut
{
public:
    std::unique_ptr<File> open(const std::filesystem::path &path, Access access) override
    {
        auto file = SystemFilesBut::open(path, access);
        if (path.extension() == ".mdb")
            file = std::make_unique<TornFile>(std::move(file));
        return file;
    }
};

/// Appends samples in one transaction and leaves the files as a program does that was stopped as
/// soon as a part of it had reached the database.
inline void interruptAppend(const std::filesystem::path &path, std::int32_t first,
                            std::int32_t last)
{
    EXPECT_EQ(errorOf([&] {
                  auto database =
                      Database::open(path, {}, std::make_shared<FilesOfAStoppedProgram>());
                  Table table = database.table(u"Tabel");
                  inTransaction(database, [&] { appendSamples(table, first, last); });
              }),
              ErrorCode::DiskError);
}

} // namespace jet
