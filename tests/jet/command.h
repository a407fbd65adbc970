#pragma once

#include <QProcess>
#include <stdexcept>
#include <string>
#include <vector>

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

} // namespace jet
