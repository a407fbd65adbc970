#pragma once

#include <QStringList>

class Settings;
struct Station;

/// The sensors' calibration offsets: Sensor::calibrationText in memory, the "Calibrare." keys in
/// the settings file. Failures of the settings file leave as Settings says.

/// Fills the calibration texts of all sensors; a missing value is an offset of 0.
void citeste_calibrari(Station &station, const Settings &settings);

/// Takes over the offsets as they were typed, one text per sensor, until the first that is not
/// numeric: it returns false, and the sensors before that one keep their new offsets, which count
/// from the next reading. Each text that was taken gets a point for its comma.
bool takeCalibrations(Station &station, QStringList &offsets);

/// Writes the offsets to the settings file.
void saveCalibrations(const Station &station, const Settings &settings, const QStringList &offsets);
