// Whole days of the station, a sample every second, in minutes: shows that every sample is stored
// and archived once and that the file of the day does not grow from day to day.

#include "tests/support/simulated_station.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <cstdio>

static bool runDay(SimulatedStation &station)
{
    const QDate date = station.time.now().date();
    QElapsedTimer watch;
    watch.start();
    station.time.advanceTo(wallTime(date, QTime(23, 59, 49, 500)));
    const qint64 bytes = QFileInfo(station.storagePath()).size();
    station.time.advanceTo(wallTime(date.addDays(1), QTime(0, 0, 0)));
    const StoredDay archive = storedDay(station.archivePath(date));
    std::printf(
        "%s: archive %u rows, %u alarms, sound %d, in order %d; day file %lld bytes; %.1f s\n",
        qPrintable(date.toString(Qt::ISODate)), archive.rows, archive.alarms, archive.sound,
        archive.idsInOrder, static_cast<long long>(bytes), double(watch.elapsed()) / 1000);
    return archive.sound && archive.idsInOrder;
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const int days = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 1;
    SimulatedStation station(wallTime(QDate(2026, 3, 27), QTime(0, 0, 0)));
    station.cycle.start();
    bool good = true;
    for (int day = 0; day < days; ++day)
        good = runDay(station) && good;
    station.cycle.stop();
    const StoredDay rest = storedDay(station.storagePath());
    std::printf("%d samples stored, %d messages, %lld archives, %u rows in the day file\n",
                station.stored, int(station.op.told.size()),
                static_cast<long long>(station.archives()), rest.rows);
    return good && rest.sound && rest.idsInOrder && station.op.told.isEmpty() ? 0 : 1;
}
