#pragma once

#include "app/settings/station.h"

#include <optional>

class Operator;

/// Reads and writes config/config.ini, the one place where settings outlive the program. The file
/// is never created here: it is installed with every key present, and only those can be changed.
///
/// Reading and writing pass through Station::Chei and Station::Valori. The file is opened and
/// closed within each call. A file that cannot be opened, read or replaced throws RuntimeError 53,
/// 61, 75 or 76; it is then unchanged.
class Settings
{
public:
    enum class Mode { Citeste, Scrie };

    /// Both must outlive this object.
    Settings(Station &station, Operator &op) : m_station(station), m_operator(op) {}

    /// Reads the values of Chei 0 to `last` into Valori 0 to `last`. At the first key that is not
    /// in the file the operator is told and reading ends: the values from there on stay as they
    /// were. Returns how many were read.
    int citeste_config(const QStringList &Chei, int last);

    /// Writes Valori 0 to `last` under Chei 0 to `last`, the decimal comma of a numeric value
    /// turned into a point, a line break into blanks (in Valori too). A key that is not in the
    /// file: the operator is told and nothing is written. The file is replaced as a whole or not at
    /// all.
    void scrie_config(const QStringList &Chei, int last);

    /// Fills Chei and Valori and writes all of them. Valori may differ from `values` afterwards, as
    /// scrie_config says.
    void save(const QStringList &keys, const QStringList &values);

    /// The value of a key that a file may lack; never says anything to the operator.
    std::optional<QString> optionalValue(const QString &key) const;

    /// Fills one diagram record and NumeFisier. Throws RuntimeError 13 for a value that is not a
    /// number, 6 for an interval beyond 16 bits.
    void incarca_setari_diagrama(Diagrama &record);

    /// Fills the record's sensor count and names.
    void incarca_nume_senzori(Diagrama &record);

    /// Fills the calibration texts of all sensors; a missing value is an offset of 0.
    void citeste_calibrari();

    /// Sizes and fills Chei with the keys of one options tab and, to write, Valori with the values
    /// in memory. Returns the last index, -1 for an unknown tab. Throws RuntimeError 9 when no
    /// diagram has that name.
    int chei_tab(const QString &diagramName, const QString &tab, Mode mode);

private:
    QByteArray readFile() const;
    void sizeLists(int count);

    Station &m_station;
    Operator &m_operator;
};
