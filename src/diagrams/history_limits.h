#pragma once

#include "app/settings/number_entry.h"

class Settings;
struct Station;

/// The limits of the history charts' value axes: Station::Istoric in memory, the "Istoric." keys in
/// the settings file. Throws what Settings throws.

/// Reads the limits from the settings file and applies them to the charts. A key that the file
/// lacks is reported to the operator; its limit and those after it stay as they were.
void readHistoryLimits(Station &station, const Settings &settings);

/// What the boxes of the history limits dialog hold.
struct HistoryLimitBoxes {
    QString LimInfTemp, LimSupTemp;
    QString LimInfPres, LimSupPres;
};

/// The history limits behind their dialog.
class HistoryLimits
{
public:
    /// `showError` reports why the numbers were refused. Station and settings must outlive this
    /// object.
    HistoryLimits(Station &station, const Settings &settings, ShowError showError);

    /// The limits in memory, as the boxes show them.
    HistoryLimitBoxes boxes() const;

    /// Checks tab "Istoric Diagrame". Four numbers are stored and applied, the boxes show them as
    /// they were understood, and it returns true. Otherwise reports the reason and changes nothing.
    bool valideaza_tab(HistoryLimitBoxes &boxes);

    void save() const;
    void restore();

private:
    Station &m_station;
    const Settings &m_settings;
    ShowError m_showError;
};
