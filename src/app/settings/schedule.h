#pragma once

#include "app/settings/station.h"

/// The sampling schedule: only the first diagram's interval and unit drive it.

/// `moment` advanced by `count` units (0 seconds, 1 minutes, 2 hours, 3 days). Throws RuntimeError
/// 5 for any other unit.
QDateTime addInterval(const QDateTime &moment, qint16 count, qint16 unit);

/// Sets the next sampling moment to `moment` plus one interval. Throws like addInterval.
void calculeaza_urmatoarea_citire(Station &station, const QDateTime &moment);

/// `now` plus one interval. Throws like addInterval.
QDateTime avans_interval(const Station &station, const QDateTime &now);
