// Whole days of the station, a sample every second, in minutes: every sample is stored and archived
// once, and nothing grows from day to day: memory, open files, the file of the day. Ends with 1
// when one of these promises is broken.
//
//   station_day [--days N]      otherwise one day

#include "bench/process_memory.h"
#include "bench/report.h"
#include "bench/simulated_station.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace
{

/// What the process holds and has written at the end of a day.
struct Evening {
    double resident = 0; // MiB
    qsizetype openFiles = 0;
    qint64 dayFile = 0; ///< bytes just before it is archived
    StoredDay archive;
};

Evening runDay(SimulatedStation &station)
{
    const QDate date = station.time.now().date();
    QElapsedTimer watch;
    watch.start();
    Evening evening;
    station.time.advanceTo(wallTime(date, QTime(23, 59, 49, 500)));
    evening.dayFile = QFileInfo(station.storagePath()).size();
    station.time.advanceTo(wallTime(date.addDays(1), QTime(0, 0, 0)));
    const double simulated = double(watch.elapsed()) / 1000;
    evening.archive = storedDay(station.archivePath(date));
    evening.resident = residentMegabytes();
    evening.openFiles = QDir(QStringLiteral("/proc/self/fd"))
                            .entryList(QDir::NoDotAndDotDot | QDir::System | QDir::AllEntries)
                            .size();
    std::fprintf(stderr,
                 "%s: archive %u rows, %u alarms, %s; day file %lld bytes; %.1f MiB resident, %lld "
                 "open files; %.1f s\n",
                 qPrintable(date.toString(Qt::ISODate)), evening.archive.rows,
                 evening.archive.alarms, evening.archive.sound ? "sound" : "DAMAGED",
                 static_cast<long long>(evening.dayFile), evening.resident,
                 static_cast<long long>(evening.openFiles), simulated);
    return evening;
}

int daysAskedFor(const QCoreApplication &application)
{
    QCommandLineParser parser;
    const QCommandLineOption days(QStringLiteral("days"), QStringLiteral("Simulated days."),
                                  QStringLiteral("N"), QStringLiteral("1"));
    parser.addOption(days);
    parser.addHelpOption();
    parser.process(application);
    return std::max(1, parser.value(days).toInt());
}

/// The first day fills the caches, and is shorter by the samples after midnight of the day before;
/// the second one is what the others are measured by.
void judge(Report &report, const std::vector<Evening> &evenings)
{
    const Evening &usual = evenings[std::min<std::size_t>(1, evenings.size() - 1)];
    double grown = 0;
    qsizetype moreFiles = 0;
    qint64 largest = 0;
    bool areSound = true;
    for (const Evening &evening : evenings) {
        grown = std::max(grown, evening.resident - usual.resident);
        moreFiles = std::max(moreFiles, evening.openFiles - usual.openFiles);
        largest = std::max(largest, evening.dayFile);
        areSound = areSound && evening.archive.sound && evening.archive.idsInOrder;
    }
    const std::string days = std::to_string(evenings.size()) + " days: ";
    report.promise(days + "every archive sound and in order", areSound);
    report.atMost(days + "resident memory", usual.resident, "MiB", 64);
    report.atMost(days + "resident memory grown since", grown, "MiB", 2);
    report.atMost(days + "open files more than at first", double(moreFiles), "files", 0);
    report.atMost(days + "file of a day grown by", double(largest - usual.dayFile), "bytes", 0);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const int days = daysAskedFor(application);
    SimulatedStation station(wallTime(QDate(2026, 3, 27), QTime(0, 0, 0)));
    station.cycle.start();
    std::vector<Evening> evenings;
    std::uint32_t archived = 0;
    for (int day = 0; day < days; ++day) {
        evenings.push_back(runDay(station));
        archived += evenings.back().archive.rows;
    }
    station.cycle.stop();
    const StoredDay rest = storedDay(station.storagePath());
    Report report;
    judge(report, evenings);
    report.promise(std::to_string(station.stored) + " samples, each in an archive or the day file",
                   station.stored == int(archived + rest.rows) && rest.sound && rest.idsInOrder);
    report.promise("an archive for every day and no message",
                   station.archives() == days && station.op.told.isEmpty());
    return report.exitCode();
}
