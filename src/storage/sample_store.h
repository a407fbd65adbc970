#pragma once

class QString;

/// The measurement files, as the monitoring cycle sees them. Both calls may open message boxes:
/// read state again afterwards.
class SampleStore
{
public:
    virtual ~SampleStore() = default;
    /// Appends one record with the sensors' present values to the named storage file. Reports a
    /// failure to the operator itself; a missing file also clears Station::monitorActive.
    virtual void adauga_inregistrare(const QString &nume) = 0;
    /// Turns the named storage file into the day's archive.
    virtual void arhiveaza_baza_date(const QString &nume) = 0;
};
