#pragma once

#include <QStringList>
#include <functional>

class Operator;
class Settings;
struct Station;

/// Shows the text of a sensor's offset, sensors from 0.
using ShowOffset = std::function<void(qsizetype sensor, const QString &text)>;

/// Takes over the calibration offsets as they were typed, one text per sensor, and writes them to
/// the settings file. Each offset is stored as soon as its text was found numeric, counts from the
/// next reading, and is shown with a point for every comma.
///
/// Returns false at the first text that is not numeric: the operator has been told, nothing is
/// written, and the sensors before it keep their new offsets. Throws as Settings does when the file
/// cannot be written.
bool saveCalibrations(Station &station, Settings &settings, Operator &op, QStringList texts,
                      const ShowOffset &show);
