#pragma once

#include "jet/cursor.h"
#include "jet/text_codec.h"
#include "jet/value_conversion.h"

#include <array>
#include <chrono>
#include <cmath>
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

/// A table as comma-separated lines, without the line of names; rows as in table order.
inline std::string mdbExport(const std::filesystem::path &database, const std::string &table)
{
    return outputOf({"mdb-export", "-H", "-D", "%Y-%m-%d", "-T", "%Y-%m-%d %H:%M:%S",
                     database.string(), table});
}

/// A value as mdbExport() has it: two programs write the same number or date in one way only here.
inline std::string exported(const Value &value)
{
    char text[64] = "";
    if (const bool *flag = std::get_if<bool>(&value))
        return *flag ? "1" : "0";
    if (const double *number = std::get_if<double>(&value)) {
        std::snprintf(text, sizeof text, "%.16g", *number);
        return text;
    }
    if (const DateTime *moment = std::get_if<DateTime>(&value)) {
        using namespace std::chrono;
        const auto seconds = static_cast<long long>(std::llround(moment->days * 86400));
        const auto day = sys_days(year(1899) / 12 / 30) + days(seconds / 86400);
        const year_month_day date(day);
        const hh_mm_ss time(std::chrono::seconds(seconds % 86400));
        std::snprintf(text, sizeof text, "\"%04d-%02u-%02u %02ld:%02ld:%02ld\"",
                      static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                      static_cast<unsigned>(date.day()), static_cast<long>(time.hours().count()),
                      static_cast<long>(time.minutes().count()),
                      static_cast<long>(time.seconds().count()));
        return text;
    }
    if (const Text *words = std::get_if<Text>(&value)) {
        std::string quoted = "\"";
        for (const char letter : toUtf8(*words))
            quoted.append(letter == '"' ? 2 : 1, letter);
        return quoted + '"';
    }
    return defaultText(value);
}

/// The rows a cursor goes through, as mdbExport() has them.
inline std::string exported(Cursor cursor)
{
    std::string lines;
    for (Row row; cursor.next();) {
        cursor.read(row);
        for (const Value &value : row)
            lines += exported(value) + ',';
        lines.back() = '\n';
    }
    return lines;
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
