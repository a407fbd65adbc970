#pragma once

#include "app/settings/number_entry.h"
#include "app/settings/option_tab.h"

#include <QStringList>
#include <array>

class Clock;
class Settings;
struct Diagrama;
struct Station;

/// What the boxes of the options dialog hold.
struct OptionBoxes {
    QString LimInf, LimSup;
    QString AlarmInf, AlarmSup;
    QString Scan;
    int MasuraTimp = -1; ///< position in the list of units, which is the unit code; -1 for none
    std::array<QString, 4> NumeMdb;
};

/// The options of one diagram behind its dialog.
///
/// Valid entries take effect in memory and on the chart at once; only saveDefaults() changes the
/// settings file. Throws what Settings throws.
class DiagramOptions
{
public:
    /// `diagram`: index into the diagram table. `showError` reports why a tab was refused. Station,
    /// settings and clock must outlive this object.
    DiagramOptions(Station &station, const Settings &settings, const Clock &clock,
                   std::size_t diagram, ShowError showError);

    /// Fills one tab's boxes from memory.
    void afiseaza_tab(OptionTab tab, OptionBoxes &boxes) const;

    /// Checks one tab's boxes. Valid texts are stored and applied, the boxes show them as they were
    /// understood (a point for a comma, 1 for an interval of 0), and it returns true. Otherwise
    /// reports the reason and changes nothing. Throws RuntimeError 6 for an interval beyond 16
    /// bits.
    bool valideaza_tab(OptionTab tab, OptionBoxes &boxes);

    /// Checks all tabs from the first to the last. At the first one that is refused all boxes are
    /// filled from memory again and it returns false; the tabs before it stay applied.
    bool applyAll(OptionBoxes &boxes);

    /// Checks one tab, then fills it from memory whatever the result.
    void apply(OptionTab tab, OptionBoxes &boxes);

    /// Applies one tab, then writes it to the settings file: what is in memory, even when the entry
    /// was refused.
    void saveDefaults(OptionTab tab, OptionBoxes &boxes);

    /// Reads one tab from the settings file into memory, applies it and fills its boxes. A key that
    /// the file lacks is reported and nothing changes. Throws RuntimeError 13 for an
    /// interval or unit that is not a number, 6 for one beyond 16 bits.
    void restoreDefaults(OptionTab tab, OptionBoxes &boxes);

private:
    /// The boxes of a tab of limits with the settings behind them.
    std::vector<NumberEntry> limitEntries(OptionTab tab, OptionBoxes &boxes) const;
    bool takeLimits(OptionTab tab, OptionBoxes &boxes);
    bool takeScanOptions(OptionBoxes &boxes);
    void takeSavedTab(OptionTab tab, const QStringList &values);
    void takeSavedScanOptions(const QStringList &values);
    Diagrama &record() const;

    Station &m_station;
    const Settings &m_settings;
    const Clock &m_clock;
    std::size_t m_diagram;
    ShowError m_showError;
};
