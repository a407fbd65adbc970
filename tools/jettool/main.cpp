// jettool lists, dumps, checks, creates and compacts .mdb files. Only create and compact write.

#include "tools/jettool/export.h"

#include "jet/compact.h"
#include "jet/database.h"
#include "jet/utf8.h"

#include <chrono>
#include <ctime>
#include <functional>
#include <iostream>
#include <string_view>
#include <vector>

namespace
{

constexpr std::string_view kUsage =
    "usage: jettool COMMAND FILE [ARGUMENTS]\n"
    "\n"
    "  create FILE             create an empty database; FILE must not exist\n"
    "  tables FILE             list the tables, one per line\n"
    "  schema FILE [TABLE]     print columns and indexes as CREATE statements\n"
    "  count FILE TABLE        print the number of records\n"
    "  dump [--csv] FILE [TABLE]\n"
    "                          print records as comma-separated values; without TABLE those of\n"
    "                          every table, each table after a line \"# NAME\"\n"
    "  dump --json FILE [TABLE]\n"
    "                          print records as JSON lines; without TABLE each line is\n"
    "                          {\"table\": NAME, \"record\": {...}}\n"
    "  check FILE              check every page, map, row and index; print one line with page and\n"
    "                          reason for each error; unused pages are only counted\n"
    "  compact FILE            write all tables to a new file that replaces FILE\n"
    "\n"
    "Only create and compact write. Exit code: 0 success, 1 failed or damaged, 2 wrong usage.\n";

constexpr std::string_view kCsvOption = "--csv";   // of dump, where it is the default
constexpr std::string_view kJsonOption = "--json"; // of dump
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

/// A command line that cannot be understood.
struct UsageError {
    std::string what;
};

using Arguments = std::vector<std::string>;

jet::DateTime now()
{
    const std::time_t seconds = std::time(nullptr);
    const std::tm local = *std::localtime(&seconds); // the only thread
    using namespace std::chrono;
    const sys_days day = year(local.tm_year + 1900) / (local.tm_mon + 1) / local.tm_mday;
    const auto days = (day - sys_days(year(1899) / 12 / 30)).count();
    const double time = (local.tm_hour * 60.0 + local.tm_min) * 60.0 + local.tm_sec;
    return {static_cast<double>(days) + time / 86400.0};
}

jet::Database openForReading(const std::string &file)
{
    jet::OpenOptions options;
    options.readOnly = true;
    return jet::Database::open(file, options);
}

/// The named table, or all of them.
std::vector<jet::Table> chosenTables(const jet::Database &database, const Arguments &arguments)
{
    std::vector<jet::Table> tables;
    if (arguments.size() > 1) {
        tables.push_back(database.table(jet::fromUtf8(arguments[1])));
    } else {
        for (const jet::Text &name : database.tables())
            tables.push_back(database.table(name));
    }
    return tables;
}

void wantArguments(const Arguments &arguments, std::size_t least, std::size_t most)
{
    if (arguments.size() < least)
        throw UsageError{"too few arguments"};
    if (arguments.size() > most)
        throw UsageError{"too many arguments"};
}

int create(const Arguments &arguments)
{
    wantArguments(arguments, 1, 1);
    jet::Database::create(arguments[0], now());
    return 0;
}

int listTables(const Arguments &arguments)
{
    wantArguments(arguments, 1, 1);
    for (const jet::Text &name : openForReading(arguments[0]).tables())
        std::cout << jet::toUtf8(name) << '\n';
    return 0;
}

int schema(const Arguments &arguments)
{
    wantArguments(arguments, 1, 2);
    const jet::Database database = openForReading(arguments[0]);
    for (const jet::Table &table : chosenTables(database, arguments))
        jettool::writeSchema(std::cout, table);
    return 0;
}

int count(const Arguments &arguments)
{
    wantArguments(arguments, 2, 2);
    const jet::Database database = openForReading(arguments[0]);
    std::cout << database.table(jet::fromUtf8(arguments[1])).recordCount() << '\n';
    return 0;
}

int dump(Arguments arguments)
{
    const bool csv = std::erase(arguments, kCsvOption) != 0;
    const bool json = std::erase(arguments, kJsonOption) != 0;
    if (csv && json)
        throw UsageError{"either --csv or --json"};
    wantArguments(arguments, 1, 2);
    const jet::Database database = openForReading(arguments[0]);
    const jet::Snapshot snapshot(database);
    const bool several = arguments.size() == 1;
    const auto line = several ? jettool::JsonLine::NamedRecord : jettool::JsonLine::Record;
    for (const jet::Table &table : chosenTables(database, arguments)) {
        if (json) {
            jettool::writeJsonLines(std::cout, table, line);
            continue;
        }
        if (several)
            std::cout << "# " << jet::toUtf8(table.name()) << '\n';
        jettool::writeCsv(std::cout, table);
    }
    return 0;
}

int check(const Arguments &arguments)
{
    wantArguments(arguments, 1, 1);
    std::size_t lostPages = 0;
    bool isDamaged = false;
    for (const jet::Finding &finding : openForReading(arguments[0]).check()) {
        if (finding.isLostSpace) {
            ++lostPages;
            continue;
        }
        std::cout << "page " << finding.page << ": " << finding.reason << '\n';
        isDamaged = true;
    }
    if (lostPages != 0)
        std::cout << "note: pages that belong to nothing until the file is compacted: " << lostPages
                  << '\n';
    return isDamaged ? kFailed : 0;
}

int compact(const Arguments &arguments)
{
    wantArguments(arguments, 1, 1);
    jet::compactDatabase(arguments[0], now());
    return 0;
}

int run(const Arguments &words)
{
    if (words.empty())
        throw UsageError{"no command"};
    const std::string &command = words.front();
    const Arguments arguments(words.begin() + 1, words.end());
    const std::pair<std::string_view, std::function<int(const Arguments &)>> commands[] = {
        {"create", create}, {"tables", listTables}, {"schema", schema},   {"count", count},
        {"dump", dump},     {"check", check},       {"compact", compact},
    };
    if (command == "--help" || command == "-h" || command == "help") {
        std::cout << kUsage;
        return 0;
    }
    for (const auto &[name, function] : commands) {
        if (name != command)
            continue;
        for (const std::string &argument : arguments) {
            if (argument.starts_with("--") &&
                (name != "dump" || (argument != kCsvOption && argument != kJsonOption)))
                throw UsageError{"unknown option '" + argument + "' of " + command};
        }
        return function(arguments);
    }
    throw UsageError{"unknown command '" + command + "'"};
}

} // namespace

int main(int argc, char *argv[])
{
    std::ios::sync_with_stdio(false);
    try {
        const int result = run(Arguments(argv + 1, argv + argc));
        std::cout.flush();
        if (!std::cout) {
            std::cerr << "jettool: writing the output failed\n";
            return kFailed;
        }
        return result;
    } catch (const UsageError &error) {
        std::cerr << "jettool: " << error.what << "\n\n" << kUsage;
        return kWrongUsage;
    } catch (const jet::Error &error) {
        std::cout.flush();
        std::cerr << "jettool: " << error.number() << ' ' << error.what();
        if (error.page() != 0)
            std::cerr << " (page " << error.page() << ')';
        std::cerr << '\n';
        return kFailed;
    } catch (const std::exception &error) {
        std::cerr << "jettool: " << error.what() << '\n';
        return kFailed;
    }
}
