#pragma once

#include "app/settings/option_tab.h"
#include "app/settings/station.h"

#include <optional>

class Operator;

/// Keys of the settings file and the text of each one's value, by the same index.
struct SettingsEntries {
    QStringList keys;
    QStringList values;
};

/// A limit of a diagram: its key in the settings file and its value in memory.
struct LimitSetting {
    QString key;
    double &value;
};

/// The limits on one options tab, the lower one first; the scan options have none.
std::vector<LimitSetting> limitsOf(Diagrama &record, OptionTab tab);

/// Reads and writes config/config.ini. The file is installed with every key; only the values of
/// these keys can be changed, and the file is never created here.
///
/// The file is opened and closed within each call. A file that cannot be opened, read or replaced
/// throws RuntimeError 53, 61, 75 or 76; it is then unchanged.
class Settings
{
public:
    /// Both must outlive this object.
    Settings(Station &station, Operator &op) : m_station(station), m_operator(op) {}

    /// Returns the values of `keys`, in their order. The first key that is not in the file is
    /// reported to the operator and ends the reading: the list is then shorter.
    QStringList citeste_config(const QStringList &keys) const;

    /// Writes each value under its key and returns the values as they were written: the decimal
    /// comma of a numeric one turned into a point, a line break into blanks. A key that is not in
    /// the file is reported to the operator and nothing is written. The file is replaced as a whole
    /// or not at all.
    QStringList scrie_config(const QStringList &keys, QStringList values) const;

    /// The value of a key that a file may lack; a missing one is not reported.
    std::optional<QString> optionalValue(const QString &key) const;

    /// Fills one diagram record and NumeFisier. Throws RuntimeError 13 for a value that is not a
    /// number, 6 for an interval beyond 16 bits.
    void incarca_setari_diagrama(Diagrama &record);

    /// Fills the record's sensor count and names.
    void incarca_nume_senzori(Diagrama &record) const;

    /// The keys of one options tab, with the values in memory. The tab of the scan options covers
    /// both diagrams and the storage names, whichever diagram asks.
    SettingsEntries chei_tab(Diagrama &record, OptionTab tab) const;

private:
    QByteArray readFile() const;
    /// As citeste_config(), with an empty text for every value that was not read.
    QStringList valuesOf(const QStringList &keys) const;
    SettingsEntries scanEntries() const;

    Station &m_station;
    Operator &m_operator;
};
