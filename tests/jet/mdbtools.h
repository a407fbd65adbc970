#pragma once

#include <array>
#include <cstdio>
#include <filesystem>
#include <initializer_list>
#include <random>
#include <stdexcept>
#include <string>

// mdbtools read what the engine wrote: programs that share no line with it.

namespace jet
{

/// A folder of its own for the life of the object.
class TemporaryFolder
{
public:
    TemporaryFolder()
        : m_path(std::filesystem::temp_directory_path() /
                 ("jet_tests_" + std::to_string(std::random_device{}())))
    {
        std::filesystem::create_directories(m_path);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    std::filesystem::path operator/(const char *name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

/// What a program writes on standard output. Throws when it cannot be run or reports a failure.
inline std::string outputOf(std::initializer_list<std::string> command)
{
    std::string line;
    for (const std::string &word : command)
        line += "'" + word + "' "; // no word of a test has a quote
    FILE *const pipe = popen(line.c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("cannot run " + line);
    std::string output;
    std::array<char, 65536> buffer{};
    while (const std::size_t length = fread(buffer.data(), 1, buffer.size(), pipe))
        output.append(buffer.data(), length);
    if (const int status = pclose(pipe); status != 0)
        throw std::runtime_error(line + "ended with " + std::to_string(status));
    return output;
}

/// A table as comma-separated lines, without the line of names.
inline std::string mdbExport(const std::filesystem::path &database, const std::string &table)
{
    return outputOf({"mdb-export", "-H", "-D", "%Y-%m-%d", "-T", "%Y-%m-%d %H:%M:%S",
                     database.string(), table});
}

inline std::string mdbTables(const std::filesystem::path &database)
{
    return outputOf({"mdb-tables", "-1", database.string()});
}

inline std::string mdbCount(const std::filesystem::path &database, const std::string &table)
{
    return outputOf({"mdb-count", database.string(), table});
}

} // namespace jet
