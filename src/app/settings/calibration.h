#pragma once

#include <QStringList>

class Settings;
struct Station;

/// The sensors' calibration offsets: Sensor::calibrationText in memory, the "Calibrare." keys in
/// the settings file. Throws what Settings throws.

/// Fills the calibration texts of all sensors; a missing value is an offset of 0.
void citeste_calibrari(Station &station, const Settings &settings);

/// Takes over the typed offsets, one text per sensor, for the next readings. Each text that was
/// taken gets a decimal point for its comma. Stops at the first text that is no number and returns
/// false; the sensors before it keep their new offsets.
bool takeCalibrations(Station &station, QStringList &offsets);

/// Writes the offsets to the settings file.
void saveCalibrations(const Station &station, const Settings &settings, const QStringList &offsets);
