#pragma once

#include <cstdio>
#include <string>

/// The one table of all benchmarks: work, what we take, what a peer takes, their ratio and the
/// limit. A figure without a peer has a limit of its own.
class Report
{
public:
    Report() { printRow("Work", "Ours", "Peer", "Ratio", "Limit", ""); }

    /// Ours may be so many times that of the peer.
    void ratio(const std::string &work, double ours, const std::string &peer, double theirs,
               double limit, const std::string &unit = "ms")
    {
        const double quotient = ours / theirs;
        printRow(work, figure(ours, unit), figure(theirs, unit) + ' ' + peer, figure(quotient, ""),
                 figure(limit, ""), verdict(quotient <= limit));
    }
    void atMost(const std::string &work, double value, const std::string &unit, double limit)
    {
        printRow(work, figure(value, unit), "", "", figure(limit, unit), verdict(value <= limit));
    }
    /// A promise that holds or does not.
    void promise(const std::string &what, bool kept)
    {
        printRow(what, kept ? "yes" : "no", "", "", "yes", verdict(kept));
    }

    /// 1 when a limit was not kept.
    int exitCode() const { return m_failed ? 1 : 0; }

private:
    static std::string figure(double value, const std::string &unit)
    {
        char text[40];
        std::snprintf(text, sizeof text, unit == "ms" ? "%.3f" : "%.2f", value);
        return unit.empty() ? text : text + (' ' + unit);
    }
    std::string verdict(bool kept)
    {
        m_failed = m_failed || !kept;
        return kept ? "ok" : "MISSED";
    }
    static void printRow(const std::string &work, const std::string &ours, const std::string &peer,
                         const std::string &ratio, const std::string &limit,
                         const std::string &verdict)
    {
        std::printf("%-48s %14s  %-36s %6s  %12s  %s\n", work.c_str(), ours.c_str(), peer.c_str(),
                    ratio.c_str(), limit.c_str(), verdict.c_str());
        std::fflush(stdout);
    }

    bool m_failed = false;
};
