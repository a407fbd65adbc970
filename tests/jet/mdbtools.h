#pragma once

#include "jet/cursor.h"
#include "jet/value_conversion.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cmath>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

// Programs run by tests; mdbtools among them read what the engine wrote and share no line with it.

namespace jet
{

/// What a program wrote, and its exit code.
struct Outcome {
    std::string output;
    int status = 0;
};

/// Runs a program to its end; what it writes on standard error is part of the output.
inline Outcome run(const std::vector<std::string> &command)
{
    QStringList words;
    for (const std::string &word : command)
        words += QString::fromStdString(word);
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(words.takeFirst(), words);
    if (!process.waitForFinished(-1))
        throw std::runtime_error("cannot run " + command.front());
    const bool isEnded = process.exitStatus() == QProcess::NormalExit;
    // Windows programs end their lines in two characters.
    return {process.readAll().replace("\r\n", "\n").toStdString(),
            isEnded ? process.exitCode() : -1};
}

#ifdef _WIN32
/// Under Wine a file has two names: this is the one for the host's programs, such as mdbtools.
inline std::string toolName(const std::filesystem::path &path)
{
    const std::string name = std::filesystem::absolute(path).generic_string();
    const char drive = QChar::fromLatin1(name.at(0)).toLower().toLatin1();
    return qgetenv("WINEPREFIX").toStdString() + "/dosdevices/" + drive + name.substr(1);
}

/// Wine starts the host's programs, but lends them no pipe and waits for none: what they write goes
/// to a file, and a second one appears when they have ended.
inline Outcome runTool(const std::vector<std::string> &command)
{
    const QTemporaryDir folder;
    const auto quoted = [](const std::string &word) { return "'" + word + "' "; };
    const auto file = [&](const char *name) {
        return quoted(toolName(folder.filePath(name).toStdU16String()));
    };
    std::string line;
    for (const std::string &word : command)
        line += quoted(word);
    line += "> " + file("output") + "2>&1; echo $? > " + file("part") + "; mv " + file("part") +
            file("status");
    if (!QProcess::startDetached("Z:\\bin\\sh", {"-c", QString::fromStdString(line)}))
        throw std::runtime_error("mdbtools are run by Wine's host, and there is none");
    QFile output(folder.filePath("output"));
    QFile status(folder.filePath("status"));
    for (const QDeadlineTimer limit(60'000); !status.open(QIODevice::ReadOnly);)
        if (limit.hasExpired())
            throw std::runtime_error("no end of " + line);
    output.open(QIODevice::ReadOnly);
    return {output.readAll().toStdString(), status.readAll().trimmed().toInt()};
}
#else
inline std::string toolName(const std::filesystem::path &path)
{
    return path.string();
}

inline Outcome runTool(const std::vector<std::string> &command)
{
    return run(command);
}
#endif

/// What a tool writes. Throws when it cannot be run or reports a failure.
inline std::string outputOf(const std::vector<std::string> &command)
{
    Outcome outcome = runTool(command);
    if (outcome.status != 0)
        throw std::runtime_error(command.front() + " ended with " + std::to_string(outcome.status) +
                                 ": " + outcome.output);
    return outcome.output;
}

/// A table as comma-separated lines, without quotes and the line of names; rows in table order.
inline std::string mdbExport(const std::filesystem::path &database, const std::string &table)
{
    return outputOf(
        {"mdb-export", "-H", "-Q", "-T", "%Y-%m-%d %H:%M:%S", toolName(database), table});
}

/// A value as mdbExport() has it.
inline std::string exported(const Value &value)
{
    if (const bool *flag = std::get_if<bool>(&value))
        return *flag ? "1" : "0";
    if (const DateTime *moment = std::get_if<DateTime>(&value)) {
        const double day = std::floor(moment->days);
        const double time = moment->days - day;
        const std::string date = day == 0 ? "1899-12-30" : defaultText(DateTime{day});
        return date + ' ' + (time == 0 ? "00:00:00" : defaultText(DateTime{time}));
    }
    if (const Bytes *bytes = std::get_if<Bytes>(&value))
        return {bytes->begin(), bytes->end()};
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
    return outputOf({"mdb-tables", "-1", toolName(database)});
}

inline std::string mdbCount(const std::filesystem::path &database, const std::string &table)
{
    return outputOf({"mdb-count", toolName(database), table});
}

} // namespace jet
