#pragma once

#include <QStringList>

class Operator;
class Settings;
struct Station;

/// Takes over the calibration offsets as they were typed, one text per sensor, and writes them to
/// the settings file. Commas become points in `texts`. Each offset is stored as soon as its text
/// was found numeric and counts from the next reading.
///
/// Returns false at the first text that is not numeric: the operator has been told, nothing is
/// written, and the sensors before it keep their new offsets. Throws as Settings does when the file
/// cannot be written.
bool saveCalibrations(Station &station, Settings &settings, Operator &op, QStringList &texts);
