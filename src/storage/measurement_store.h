#pragma once

#include <QObject>

class Clock;
class Operator;
struct Station;

/// The station's measurement files: the append of one sample, the repair of a table whose sequence
/// numbers collide, and the daily archive. Every file is opened and closed within each call; each
/// call is all or nothing in the file, whenever it is cut off.
///
/// Failures are told to the operator here, as each call says; no exception leaves but those that
/// no part of the station can name.
class MeasurementStore : public QObject
{
    Q_OBJECT
public:
    /// All must outlive this object.
    MeasurementStore(Station &station, Operator &op, const Clock &clock);

    /// Appends one record with the sensors' present values to table Tabel of storage file `nume`.
    /// File missing: the operator is told, Station::monitorActive cleared, monitorStopped()
    /// emitted. Duplicate Id: repara_baza_date; that sample is lost. Any other failure: number and
    /// description are told and monitoring goes on.
    void adauga_inregistrare(const QString &nume);

signals:
    /// A missing storage file has ended monitoring.
    void monitorStopped();

private:
    void appendRecord(const QString &path);

    Station &m_station;
    Operator &m_operator;
    const Clock &m_clock;
};
