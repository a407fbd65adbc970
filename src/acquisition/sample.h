#pragma once

struct Station;
class QDateTime;

/// Turns the values just read into a sample: adds each sensor's calibration offset, sets its alarm
/// flag (a value that meets a limit of its diagram exactly is an alarm) and its reading time.
/// Throws RuntimeError 13 for a calibration text that is not a number, 9 for a sensor without a
/// diagram.
void completeSample(Station &station, const QDateTime &readingTime);
