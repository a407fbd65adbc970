#include "bench/simulated_station.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"

#include <QDir>

StoredDay storedDay(const QString &path)
{
    const jet::Database database = jet::Database::open(nativePath(path), {.readOnly = true});
    const jet::Table table = database.table(tabel::kName);
    const std::size_t alarma = table.column(tabel::kAlarma);
    StoredDay day;
    day.sound = database.check().empty();
    jet::Cursor records = table.byIndex(tabel::kPrimaryIndex);
    jet::Row row;
    while (records.next()) {
        records.read(row);
        ++day.rows;
        day.alarms += jet::isNull(row[alarma]) ? 0 : 1;
        day.idsInOrder = day.idsInOrder && row[0] == jet::Value(std::int32_t(day.rows));
    }
    return day;
}

SimulatedStation::SimulatedStation(const QDateTime &start)
    : time(start), store(station, op, time, {.durability = jet::Durability::Unsynced})
{
    station.appFolder = folder.path();
    station.diagramsOpen = false;
    for (std::size_t i = 0; i < station.sensors.size(); ++i)
        station.sensors[i].label = QStringLiteral("Senzor%1").arg(i + 1);
    QDir(folder.path()).mkpath(QStringLiteral("mdb/arhive"));
    createStorageFile(storagePath(), time.now());
    QObject::connect(&store, &MeasurementStore::recordStored, &cycle, [this] { ++stored; });

    m_answer = time.createTimer(QStringLiteral("recorder"), [this] {
        line.written.clear(); // a month of commands would hide what the station keeps
        const char *first = ++m_exchanges % 100 == 0 ? "138" : "121.5";
        line.arrive(replyWith({first, "121", "122", "120.5", "121", "119"}));
    });
    line.onWrite = [this](const QByteArray &command) {
        if (command.startsWith("FM0"))
            m_answer->start(milliseconds(0));
    };
}

QString SimulatedStation::archivePath(QDate day) const
{
    return station.archiveFolder() +
           QStringLiteral("arh_%1_autoclava1.mdb").arg(day.toString(QStringLiteral("dd.MM.yyyy")));
}

qint64 SimulatedStation::archives() const
{
    return QDir(station.archiveFolder()).entryList(QDir::Files).size();
}
