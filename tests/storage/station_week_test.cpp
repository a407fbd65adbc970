#include "tests/jet/mdbtools.h"
#include "tests/support/simulated_station.h"

#include <QFileInfo>

static constexpr std::uint32_t kMinutes = 24 * 60;

TEST(StationWeek, EveryDayIsArchivedOnceAndTheFileOfTheDayDoesNotGrow)
{
    // The week holds the night of the change to summer time and the end of a month.
    const QDate monday(2026, 3, 26);
    SimulatedStation station(wallTime(monday, QTime(0, 0, 30)));
    for (Diagrama &diagram : station.station.Diagrame)
        diagram.masura_interval = 1;
    station.cycle.start();

    qint64 secondDay = 0;
    for (int day = 0; day < 7; ++day) {
        const QDate date = monday.addDays(day);
        station.time.advanceTo(wallTime(date, QTime(23, 59, 49)));
        const qint64 size = QFileInfo(station.storagePath()).size();
        secondDay = day == 1 ? size : secondDay;
        EXPECT_TRUE(day < 2 || size == secondDay) << day;
        station.time.advanceTo(wallTime(date.addDays(1), QTime(0, 0, 0)));

        const StoredDay archive = storedDay(station.archivePath(date));
        EXPECT_EQ(archive.rows, kMinutes) << date.toString().toStdString();
        EXPECT_NEAR(archive.alarms, kMinutes / 100, 1);
        EXPECT_TRUE(archive.idsInOrder && archive.sound);
        EXPECT_EQ(storedDay(station.storagePath()).rows, 0u);
    }
    EXPECT_EQ(station.archives(), 7);
    EXPECT_EQ(station.stored, 7 * int(kMinutes));
    EXPECT_TRUE(station.op.told.isEmpty()) << station.op.told.join('\n').toStdString();

    EXPECT_EQ(jet::mdbCount(station.archivePath(monday).toStdString(), "Tabel"),
              std::to_string(kMinutes) + "\n");
}
