// Whole days of the station in minutes: the real cycle, exchange and storage, with a clock and a
// recorder that answer at once. Shows that every sample is stored and archived once and that the
// file of the day does not grow from day to day.

#include "acquisition/exchange.h"
#include "acquisition/monitoring_cycle.h"
#include "acquisition/ports.h"
#include "app/settings/station.h"
#include "jet/database.h"
#include "storage/measurement_store.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"
#include "tests/acquisition/acquisition_rig.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <cstdio>

namespace
{

class NoDiagrams final : public DiagramFeed
{
public:
    void adauga_citiri(const std::vector<Sensor> &) override {}
    void showAtOrigin() override {}
    void goleste_diagramele() override {}
};

class Store final : public SampleStore
{
public:
    explicit Store(MeasurementStore &store) : m_store(store) {}
    void adauga_inregistrare(const QString &name) override { m_store.adauga_inregistrare(name); }
    void arhiveaza_baza_date(const QString &name) override { m_store.arhiveaza_baza_date(name); }

private:
    MeasurementStore &m_store;
};

struct Contents {
    std::uint32_t rows = 0;
    std::uint32_t alarms = 0;
    bool idsInOrder = true;
    bool sound = true;
};

Contents contentsOf(const QString &path)
{
    const jet::Database database = jet::Database::open(nativePath(path), {.readOnly = true});
    const jet::Table table = database.table(tabel::kName);
    const std::size_t alarma = table.column(tabel::kAlarma);
    Contents contents;
    contents.sound = database.check().empty();
    jet::Cursor records = table.byIndex(tabel::kPrimaryIndex);
    jet::Row row;
    while (records.next()) {
        records.read(row);
        ++contents.rows;
        contents.alarms += jet::isNull(row[alarma]) ? 0 : 1;
        contents.idsInOrder &= row[0] == jet::Value(std::int32_t(contents.rows));
    }
    return contents;
}

int simulate(int days)
{
    QTemporaryDir folder;
    Station station = sampleStation();
    station.appFolder = folder.path();
    station.NumeFisier[0] = QStringLiteral("autoclava1.mdb");
    QDir(folder.path()).mkpath(QStringLiteral("mdb/arhive"));
    TestTime time(wallTime(QDate(2026, 3, 27), QTime(0, 0, 0)));
    const QString storage = station.storagePath(station.NumeFisier[0]);
    createStorageFile(storage, time.now());

    FakeOperator op;
    FakeSerialLine line;
    MeasurementStore storing(station, op, time, {.durability = jet::Durability::Unsynced});
    Store store(storing);
    NoDiagrams diagrams;
    int exchanges = 0;
    const auto answer = time.createTimer(QStringLiteral("Answer"), [&] {
        // One reading in a hundred is an alarm.
        const char *hot = ++exchanges % 100 == 0 ? "138" : "121.5";
        line.receive(replyWith({hot, "121", "122", "120.5", "121", "119"}));
    });
    line.whenRequested = [&] { answer->start(std::chrono::milliseconds(0)); };
    Exchange exchange(station, line, time, op);
    MonitoringCycle cycle(station, exchange, diagrams, store, time, time);
    int stored = 0;
    QObject::connect(&storing, &MeasurementStore::recordStored, [&] { ++stored; });

    bool good = true;
    cycle.start();
    for (int day = 0; day < days; ++day) {
        const QDate date = time.now().date();
        QElapsedTimer watch;
        watch.start();
        time.advanceTo(wallTime(date, QTime(23, 59, 49, 500)));
        const qint64 grown = QFileInfo(storage).size();
        time.advanceTo(wallTime(date.addDays(1), QTime(0, 0, 0)));
        const Contents archived =
            contentsOf(station.archiveFolder() + QStringLiteral("arh_%1_autoclava1.mdb")
                                                     .arg(date.toString(QStringLiteral("dd.MM.yyyy"))));
        std::printf("%s: archive %u rows, %u alarms, sound %d, in order %d; day file %lld bytes; %.1f s\n",
                    qPrintable(date.toString(Qt::ISODate)), archived.rows, archived.alarms,
                    archived.sound, archived.idsInOrder, static_cast<long long>(grown),
                    double(watch.elapsed()) / 1000);
        good = good && archived.sound && archived.idsInOrder;
    }
    cycle.stop();
    const Contents rest = contentsOf(storage);
    std::printf("%d samples stored, %d messages, %lld archives, %u rows in the day file\n", stored,
                int(op.told.size()),
                static_cast<long long>(QDir(station.archiveFolder()).entryList(QDir::Files).size()),
                rest.rows);
    return good && rest.sound && rest.idsInOrder && op.told.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return simulate(argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 1);
}
