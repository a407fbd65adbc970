#pragma once

#include "jet/database.h"
#include "storage/sample_store.h"

#include <QObject>
#include <functional>

class Clock;
class Operator;
struct Station;

/// The station's measurement files: the append of one sample, the repair of a table whose sequence
/// numbers collide, and the daily archive. Every file is opened and closed within each call; each
/// change is all or nothing in the file, whenever it is cut off.
///
/// Failures of files and databases are reported to the operator here, as each call says.
class MeasurementStore : public QObject, public SampleStore
{
    Q_OBJECT
public:
    /// How the station opens its files: the timeout limits how long another program can block the
    /// windows.
    static jet::OpenOptions openOptions() { return {.lockTimeout = std::chrono::seconds(1)}; }

    /// All must outlive this object. `options`: how storage files are opened; simulations of whole
    /// days need no syncs.
    MeasurementStore(Station &station, Operator &op, const Clock &clock,
                     const jet::OpenOptions &options = openOptions());

    /// Appends one record with the sensors' present values to table Tabel of storage file `nume`.
    /// File missing: this is reported and Station::monitorActive cleared. Id is the number of
    /// records + 1; where that is taken: repara_baza_date, and the sample is lost. Any other
    /// failure: number and description are reported and monitoring goes on.
    void adauga_inregistrare(const QString &nume) override;

    /// Rebuilds Tabel of storage file `nume` and reports it. While another program has the file
    /// open the operator is asked to close it, and the repair retried. Any other failure: number
    /// and description are reported, the file is as it was.
    void repara_baza_date(const QString &nume);

    /// Removes a Tabel2 that was left behind in the first storage file. Throws jet::Error.
    void sterge_tabel_temporar();

    /// Copies storage file `nume` to the archive of today, then removes all its records. An archive
    /// of the same day is replaced. File already empty: this is reported, the (empty) archive
    /// stays. Any other failure: number and description are reported; records are removed only when
    /// the archive is safely on the disk. A file that another program writes to is not copied, one
    /// that cannot be opened for another reason is.
    void arhiveaza_baza_date(const QString &nume) override;

signals:
    /// A record with that Id is safely in the file.
    void recordStored(int id);
    /// The database browser has the file open and must close it within this signal.
    void browserMustClose();
    /// The browser that was closed for the archive may come back.
    void browserMayReopen();

private:
    /// Whether there is such a file in the storage folder; a name with a path in it is none.
    bool isStorageFile(const QString &nume) const;
    jet::Database openStorage(const QString &nume) const;
    int appendRecord(const QString &nume);
    /// Runs `step`, asking the operator to close other programs for as long as one locks the file.
    void retryWhileLocked(const QString &nume, const std::function<void()> &step);
    void archiveAndEmpty(const QString &nume, const QString &archive) const;

    Station &m_station;
    Operator &m_operator;
    const Clock &m_clock;
    jet::OpenOptions m_options;
};
