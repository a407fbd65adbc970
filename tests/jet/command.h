#pragma once

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>
#ifndef _WIN32
#include <sys/wait.h>
#endif

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
#ifdef _WIN32
    constexpr char kQuote = '"';
#else
    constexpr char kQuote = '\'';
#endif
    std::string line;
    for (const std::string &word : command)
        line += kQuote + word + kQuote + ' '; // no word of a test has a quote
    line += "2>&1";
#ifdef _WIN32
    line = '"' + line + '"'; // its shell takes away the outermost pair
#endif
    FILE *const pipe = popen(line.c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("cannot run " + line);
    Outcome outcome;
    std::array<char, 65536> buffer{};
    while (const std::size_t length = fread(buffer.data(), 1, buffer.size(), pipe))
        outcome.output.append(buffer.data(), length);
    const int status = pclose(pipe);
#ifdef _WIN32
    outcome.status = status;
#else
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
    return outcome;
}

} // namespace jet
