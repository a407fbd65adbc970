#include "jet/database.h"
#include "jet/file/file.h"
#include "storage/measurement_store.h"
#include "storage/recordset_model.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"
#include "tests/support/station_rig.h"
#include "tests/support/test_time.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>

namespace
{

class StorageTest : public StationRig
{
protected:
    StorageTest()
    {
        station.NumeFisier = {"autoclava1.mdb", "b.mdb", "c.mdb", "d.mdb"};
        station.monitorActive = true;
        for (int i = 0; i < 6; ++i) {
            Sensor sensor;
            sensor.label = QStringLiteral("Senzor%1").arg(i + 1);
            sensor.value = 20.5 + i;
            station.sensors.push_back(sensor);
        }
        createStorageFile(storage(), time.now());
    }

    QString storage() const { return station.storagePath(station.NumeFisier[0]); }
    QString archive(const char *date = "07.03.2026") const
    {
        return station.archiveFolder() + QStringLiteral("arh_%1_autoclava1.mdb").arg(date);
    }

    void append(int samples = 1)
    {
        for (int i = 0; i < samples; ++i)
            store.adauga_inregistrare(station.NumeFisier[0]);
    }

    static std::vector<jet::Row> rows(const QString &path)
    {
        const jet::Database database = jet::Database::open(nativePath(path), {.readOnly = true});
        EXPECT_TRUE(database.check().empty()) << path.toStdString();
        std::vector<jet::Row> all;
        jet::Cursor records = database.table(tabel::kName).records();
        while (records.next())
            all.push_back(records.row());
        return all;
    }

    std::vector<int> ids(const QString &path) const
    {
        std::vector<int> all;
        for (const jet::Row &row : rows(path))
            all.push_back(std::get<std::int32_t>(row[0]));
        return all;
    }

    int alarmSize() const
    {
        const jet::Database database = jet::Database::open(nativePath(storage()));
        return database.table(tabel::kName).design().columns[7].size;
    }

    void deleteRecord(int id)
    {
        jet::Database database = jet::Database::open(nativePath(storage()));
        jet::Cursor records = database.table(tabel::kName).byIndex(tabel::kPrimaryIndex);
        const jet::Value key = id;
        ASSERT_TRUE(records.seek({&key, 1}));
        records.erase();
    }

    TestTime time;
    MeasurementStore store{station, op, time, {.lockTimeout = std::chrono::milliseconds(20)}};
};

const QString kRepaired = QStringLiteral("S-a reparat baza de date autoclava1.mdb !");

} // namespace

TEST_F(StorageTest, SampleIsStoredWithItsMomentAndAlarmOnlyWhenThereIsOne)
{
    append();
    station.sensors[4].alarm = station.sensors[5].alarm = true;
    time.passSilently(std::chrono::milliseconds(1999));
    append();
    const std::vector<jet::Row> all = rows(storage());
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(std::get<std::int32_t>(all[1][0]), 2);
    EXPECT_EQ(std::get<double>(all[0][1]), 20.5);
    EXPECT_EQ(std::get<double>(all[0][6]), 25.5);
    EXPECT_TRUE(jet::isNull(all[0][7])) << "not No: not assigned";
    EXPECT_EQ(std::get<jet::Text>(all[1][7]), u"Yes");
    EXPECT_EQ(std::get<jet::DateTime>(all[0][8]).days, 46088.0);
    EXPECT_DOUBLE_EQ(std::get<jet::DateTime>(all[1][9]).days, (9 * 3600 + 5 * 60 + 1) / 86400.0);
    EXPECT_TRUE(op.told.isEmpty());
    EXPECT_EQ(MeasurementStore::openOptions().durability, jet::Durability::Synced);
}

TEST_F(StorageTest, DateAndTimeOfARecordAreOfOneMoment)
{
    struct : Clock {
        QDateTime now() const override { return std::exchange(next, next.addMSecs(1)); }
        mutable QDateTime next = wallTime(QDate(2026, 3, 7), QTime(23, 59, 59, 999));
    } justBeforeMidnight;
    MeasurementStore(station, op, justBeforeMidnight).adauga_inregistrare(station.NumeFisier[0]);
    const jet::Row row = rows(storage()).at(0);
    EXPECT_EQ(std::get<jet::DateTime>(row[8]).days, 46088.0);
    EXPECT_DOUBLE_EQ(std::get<jet::DateTime>(row[9]).days, 86399 / 86400.0);
}

TEST_F(StorageTest, TableOfAnotherDesignTakesWhatItHasColumnsFor)
{
    QFile::remove(storage());
    {
        jet::Database database = jet::Database::create(nativePath(storage()), {46000});
        jet::TableDesign design;
        design.name = tabel::kName;
        design.columns = {{tabel::kAlarma, jet::ColumnType::Boolean},
                          {u"senzor1", jet::ColumnType::Double}, // letter case counts
                          {u"Senzor2", jet::ColumnType::Text, 20},
                          {tabel::kOra, jet::ColumnType::DateTime},
                          {tabel::kData, jet::ColumnType::DateTime},
                          {u"Altele", jet::ColumnType::Long},
                          {tabel::kId, jet::ColumnType::Long}};
        database.createTable(design, {46000});
    }
    station.sensors[0].alarm = true; // no column for this one, so nobody sees its alarm
    station.sensors[1].alarm = true;
    append();
    const std::vector<jet::Row> all = rows(storage());
    ASSERT_EQ(all.size(), 1u) << op.told.join('\n').toStdString();
    EXPECT_TRUE(std::get<bool>(all[0][0]));
    EXPECT_TRUE(jet::isNull(all[0][1]));
    EXPECT_EQ(std::get<jet::Text>(all[0][2]), u"21.5");
    EXPECT_TRUE(jet::isNull(all[0][5]));
    EXPECT_EQ(std::get<std::int32_t>(all[0][6]), 1);
}

TEST_F(StorageTest, MissingFileStopsMonitoring)
{
    for (const QString &name : {QStringLiteral("nothing.mdb"), QString(), QStringLiteral("."),
                                QStringLiteral("../mdb/autoclava1.mdb")}) {
        station.monitorActive = true;
        store.adauga_inregistrare(name);
        EXPECT_FALSE(station.monitorActive);
        EXPECT_EQ(op.told.takeLast(), "Fisierul de stocare nu exista !!");
        EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);
    }
}

TEST_F(StorageTest, UnusableFileIsToldByNumberAndMonitoringGoesOn)
{
    append(3);
    QFile file(storage());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QByteArray whole = file.readAll();
    const struct {
        QByteArray content;
        const char *number;
    } cases[] = {{"this is not a database", "3343 "},
                 {QByteArray(), "3343 "},
                 {whole.first(5 * 4096), "3049 "},
                 {QByteArray(whole).replace(2 * 4096, 64, QByteArray(64, '\xFF')), "3049 "}};
    for (const auto &c : cases) {
        file.resize(0);
        file.seek(0);
        file.write(c.content);
        file.flush();
        append();
        ASSERT_EQ(op.told.size(), 1) << c.number;
        const QString told = op.told.takeLast();
        EXPECT_TRUE(told.startsWith(c.number)) << told.toStdString();
        EXPECT_TRUE(station.monitorActive);
        file.seek(0);
        EXPECT_EQ(file.readAll(), c.content) << "nothing was written";
    }
}

TEST_F(StorageTest, EveryCollidingNumberRepairsAndLosesItsSampleUntilTheArchive)
{
    append(4);
    station.sensors[4].alarm = true;
    append();
    deleteRecord(3);
    const std::vector<jet::Row> before = rows(storage());
    append(2); // both would be number 5, which is taken
    EXPECT_EQ(op.told, QStringList({kRepaired, kRepaired}));
    EXPECT_TRUE(rows(storage()) == before) << "copied as they are";
    EXPECT_EQ(alarmSize(), 10);

    store.arhiveaza_baza_date(station.NumeFisier[0]);
    append();
    EXPECT_EQ(ids(storage()), (std::vector<int>{1})) << "a new day counts from 1";
}

TEST_F(StorageTest, RepairWaitsForTheProgramThatHoldsTheFileAndDropsALeftover)
{
    append(2);
    std::optional<jet::Database> other =
        jet::Database::open(nativePath(storage()), {.readOnly = true});
    op.meanwhile = [&] {
        if (op.told.size() == 2)
            other.reset();
    };
    store.repara_baza_date(station.NumeFisier[0]);
    ASSERT_EQ(op.told.size(), 3);
    EXPECT_TRUE(op.told[0].startsWith(
        "O aplicatie externa blocheaza baza de date autoclava1.mdb care trebuie reparata. Va rog"));
    EXPECT_EQ(op.told[1], op.told[0]);
    EXPECT_EQ(op.told[2], kRepaired);

    {
        jet::Database database = jet::Database::open(nativePath(storage()));
        jet::TableDesign leftover = tabel::design();
        leftover.name = tabel::kScratchName;
        database.createTable(leftover, {46000});
    }
    // The station's own browser is not another program: it has to go before the lock counts.
    const QSignalSpy reopened(&store, &MeasurementStore::browserMayReopen);
    other.emplace(jet::Database::open(nativePath(storage()), {.readOnly = true}));
    station.FormMdbDeschis = true;
    QObject::connect(&store, &MeasurementStore::browserMustClose, [&] { other.reset(); });
    store.repara_baza_date(station.NumeFisier[0]);
    EXPECT_EQ(op.told.size(), 4);
    EXPECT_EQ(op.told.last(), kRepaired);
    EXPECT_TRUE(reopened.isEmpty());
    const jet::Database database = jet::Database::open(nativePath(storage()), {.readOnly = true});
    EXPECT_EQ(database.tables(), (std::vector<jet::Text>{tabel::kName}));
    EXPECT_EQ(ids(storage()), (std::vector<int>{1, 2}));
}

TEST_F(StorageTest, ArchiveTakesTheDayAndEmptiesTheFile)
{
    append(300);
    store.arhiveaza_baza_date(station.NumeFisier[0]);
    EXPECT_TRUE(op.told.isEmpty()) << op.told.join('\n').toStdString();
    EXPECT_EQ(rows(archive()).size(), 300u);
    EXPECT_TRUE(rows(storage()).empty());

    append(2); // a second archive of the day holds only what came since
    store.arhiveaza_baza_date(station.NumeFisier[0]);
    EXPECT_EQ(ids(archive()), (std::vector<int>{1, 2}));
    store.arhiveaza_baza_date(station.NumeFisier[0]);
    EXPECT_EQ(op.told, QStringList({"Baza de date autoclava1.mdb e goala!"}));
    EXPECT_EQ(op.lastIcon, Operator::Icon::Exclamation);
    EXPECT_TRUE(rows(archive()).empty());
}

TEST_F(StorageTest, ArchiveThatCannotBeMadeDeletesNothing)
{
    append(2);
    const auto expectTold = [&](const QString &text) {
        store.arhiveaza_baza_date(station.NumeFisier[0]);
        EXPECT_EQ(op.told, QStringList({text}));
        op.told.clear();
        if (QFile::exists(storage())) {
            EXPECT_EQ(rows(storage()).size(), 2u);
        }
    };
    ASSERT_TRUE(QDir().mkpath(archive() + "/folder"));
    expectTold("75 Path/File access error");
    ASSERT_TRUE(QDir(station.archiveFolder()).removeRecursively());
    expectTold("76 Path not found");
    QFile::remove(storage());
    expectTold("53 File not found");
}

TEST_F(StorageTest, FileThatCannotBeOpenedIsArchivedUnlessAnotherProgramWritesToIt)
{
    const auto bytesOf = [](const QString &path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    };
    const auto expectTold = [&](const char *number) {
        store.arhiveaza_baza_date(station.NumeFisier[0]);
        ASSERT_EQ(op.told.size(), 1);
        EXPECT_TRUE(op.told.takeLast().startsWith(number)) << number;
    };
    append(2);
    store.arhiveaza_baza_date(station.NumeFisier[0]);
    const QByteArray sound = bytesOf(archive());
    append();
    {
        jet::Database other = jet::Database::open(nativePath(storage()));
        const jet::Transaction writing(other);
        expectTold("3356 ");
    }
    EXPECT_EQ(bytesOf(archive()), sound);
    EXPECT_EQ(ids(storage()), (std::vector<int>{1}));

    QFile file(storage());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("what is left of the day");
    file.close();
    expectTold("3343 ");
    EXPECT_EQ(bytesOf(archive()), "what is left of the day");
}

TEST_F(StorageTest, BrowserLooksAgainAtAFileThatWasBusy)
{
    append(2);
    RecordsetModel model(station);
    QSignalSpy failed(&model, &RecordsetModel::failed);
    model.open(storage());
    const auto newest = [&] { return model.index(0, 0).data().toString(); };
    const auto other =
        jet::makeSystemFiles()->open(nativePath(storage()), jet::FileSystem::Access::Write);
    ASSERT_TRUE(other->tryLock(jet::LockPart::Pages, jet::LockMode::Exclusive));
    EXPECT_EQ(newest(), "");
    other->unlock(jet::LockPart::Pages);
    EXPECT_EQ(newest(), "") << "the other cells of this look do not wait";
    ASSERT_EQ(failed.size(), 1);
    EXPECT_TRUE(failed[0][0].toString().startsWith("3356 "));
    QSignalSpy changed(&model, &RecordsetModel::dataChanged);
    ASSERT_TRUE(changed.wait()) << "what shows the records is told";
    EXPECT_EQ(newest(), "2");
    EXPECT_EQ(model.index(0, 8).data(), "07.03.2026");
    EXPECT_EQ(model.index(0, 9).data(), "09:05:00");
}
