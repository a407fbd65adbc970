#include "storage/measurement_store.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"
#include "tests/acquisition/acquisition_rig.h"
#include "tests/jet/mdbtools.h"

#include <QDir>
#include <QTemporaryDir>

/// The monitoring cycle with the real storage, a sample a minute; each hundredth is an alarm.
class StationWeek : public AcquisitionRig
{
protected:
    StationWeek()
    {
        station.appFolder = folder.path();
        station.Diagrame[0].masura_interval = 1;
        for (std::size_t i = 0; i < station.sensors.size(); ++i)
            station.sensors[i].label = QStringLiteral("Senzor%1").arg(i + 1);
        QDir(folder.path()).mkpath(QStringLiteral("mdb/arhive"));
        answerAfter(milliseconds(0));
        whenStored = [this] {
            store.adauga_inregistrare(station.NumeFisier[0]);
            const bool isAlarmNext = records.size() % 100 == 99;
            reply = replyWith({isAlarmNext ? "138" : "121.5", "121", "122", "120", "121", "119"});
        };
        whenArchived = [this] { store.arhiveaza_baza_date(station.NumeFisier[0]); };
    }
    QTemporaryDir folder;
    MeasurementStore store{station, op, time, {.durability = jet::Durability::Unsynced}};
};

TEST_F(StationWeek, EveryDayIsArchivedOnceAndTheFileOfTheDayDoesNotGrow)
{
    constexpr int kMinutes = 24 * 60;
    // The week holds the night of the change to summer time and the end of a month.
    const QDate monday(2026, 3, 26);
    time.setClock(wallTime(monday, QTime(0, 0, 30)));
    const QString storage = station.storagePath(station.NumeFisier[0]);
    createStorageFile(storage, time.now());
    cycle->start();
    qint64 secondDay = 0;
    for (int day = 0; day < 7; ++day) {
        const QDate date = monday.addDays(day);
        time.advanceTo(wallTime(date, QTime(23, 59, 49)));
        const qint64 size = QFileInfo(storage).size();
        secondDay = day == 1 ? size : secondDay;
        EXPECT_TRUE(day < 2 || size == secondDay) << day;
        time.advanceTo(wallTime(date.addDays(1), QTime(0, 0, 0)));

        const QString name = "arh_" + date.toString("dd.MM.yyyy") + "_autoclava1.mdb";
        const jet::Database archive =
            jet::Database::open(nativePath(station.archiveFolder() + name));
        EXPECT_TRUE(archive.check().empty()) << day;
        int rows = 0, alarms = 0;
        for (jet::Cursor cursor = archive.table(tabel::kName).records(); cursor.next();) {
            const jet::Row row = cursor.row();
            EXPECT_EQ(std::get<std::int32_t>(row[0]), ++rows);
            alarms += !jet::isNull(row[7]);
        }
        EXPECT_EQ(rows, kMinutes) << day;
        EXPECT_NEAR(alarms, kMinutes / 100, 1);
    }
    EXPECT_EQ(archives.size(), 7u);
    EXPECT_EQ(records.size(), 7u * kMinutes);
    EXPECT_TRUE(op.told.isEmpty()) << op.told.join('\n').toStdString();
    const QString first = station.archiveFolder() + "arh_26.03.2026_autoclava1.mdb";
    EXPECT_EQ(jet::mdbCount(first.toStdString(), "Tabel"), std::to_string(kMinutes) + "\n");
}
