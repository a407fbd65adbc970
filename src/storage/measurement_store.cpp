#include "storage/measurement_store.h"
#include "app/settings/station.h"
#include "platform/clock.h"
#include "platform/operator.h"
#include "storage/failure.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"
#include "storage/table_repair.h"
#include "storage/texts.h"

#include <QFileInfo>
#include <algorithm>

namespace
{

const Sensor *sensorOfColumn(const Station &station, const jet::Text &column)
{
    const QString name = QString::fromStdU16String(column);
    const auto found = std::find_if(station.sensors.cbegin(), station.sensors.cend(),
                                    [&](const Sensor &sensor) { return sensor.label == name; });
    return found == station.sensors.cend() ? nullptr : &*found;
}

jet::Assignments sampleValues(const Station &station, const jet::Table &table)
{
    jet::Assignments values;
    bool alarm = false;
    for (const jet::ColumnDesign &column : table.design().columns) {
        const Sensor *sensor = sensorOfColumn(station, column.name);
        if (!sensor)
            continue;
        values.emplace_back(column.name, sensor->value);
        alarm = alarm || sensor->alarm;
    }
    if (alarm)
        values.emplace_back(tabel::kAlarma, tabel::kYes);
    return values;
}

} // namespace

MeasurementStore::MeasurementStore(Station &station, Operator &op, const Clock &clock,
                                   const jet::OpenOptions &options)
    : m_station(station), m_operator(op), m_clock(clock), m_options(options)
{
}

bool MeasurementStore::isStorageFile(const QString &nume) const
{
    const QFileInfo file(m_station.storagePath(nume));
    return file.fileName() == nume && file.isFile();
}

jet::Database MeasurementStore::openStorage(const QString &nume) const
{
    return jet::Database::open(nativePath(m_station.storagePath(nume)), m_options);
}

void MeasurementStore::adauga_inregistrare(const QString &nume)
{
    if (!isStorageFile(nume)) {
        m_operator.tell(texts::storage::storageFileMissing(), Operator::Icon::Critical);
        m_station.monitorActive = false;
        return;
    }
    int id = 0;
    const std::optional<Failure> failure = attempt([&] { id = appendRecord(nume); });
    if (!failure)
        emit recordStored(id);
    else if (failure->number == static_cast<int>(jet::ErrorCode::DuplicateKey))
        repara_baza_date(nume);
    else
        m_operator.tell(failure->text());
}

int MeasurementStore::appendRecord(const QString &nume)
{
    jet::Database database = openStorage(nume);
    jet::Table table = database.table(tabel::kName);
    const auto id = static_cast<std::int32_t>(table.recordCount() + 1);
    jet::Assignments record{{tabel::kId, id}};
    const jet::Assignments values = sampleValues(m_station, table);
    record.insert(record.end(), values.begin(), values.end());
    const QDateTime now = m_clock.now(); // once: midnight must not fall between date and time
    record.emplace_back(tabel::kData, tabel::dateValue(now.date()));
    record.emplace_back(tabel::kOra, tabel::timeValue(now.time()));
    table.append(record);
    return id;
}

void MeasurementStore::retryWhileLocked(const QString &nume, const std::function<void()> &step)
{
    for (;;) {
        try {
            return step();
        } catch (const jet::Error &error) {
            if (error.code() != jet::ErrorCode::TableLocked)
                throw;
        }
        m_operator.tell(texts::storage::lockedByOther(nume), Operator::Icon::Critical);
    }
}

void MeasurementStore::repara_baza_date(const QString &nume)
{
    // Before anything else: the station's own browser would lock the file against the repair.
    if (m_station.FormMdbDeschis)
        emit browserMustClose();
    const std::optional<Failure> failure = attempt([&] {
        retryWhileLocked(nume, [this] { sterge_tabel_temporar(); });
        retryWhileLocked(nume, [&] {
            jet::Database database = openStorage(nume);
            rebuildTabel(database, tabel::momentValue(m_clock.now()));
        });
    });
    m_operator.tell(failure ? failure->text() : texts::storage::repaired(nume));
}

void MeasurementStore::sterge_tabel_temporar()
{
    jet::Database database = openStorage(m_station.NumeFisier[0]);
    dropScratchTable(database);
}
