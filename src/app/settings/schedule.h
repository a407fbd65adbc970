#pragma once

#include "app/settings/station.h"

/// The sampling schedule: only the first diagram's interval and unit drive it.

/// `now` plus one interval. Throws RuntimeError 5 for an unknown unit, 9 when there is no diagram.
QDateTime avans_interval(const Station &station, const QDateTime &now);

/// Sets the next sampling moment to `moment` plus one interval. Throws like avans_interval().
void calculeaza_urmatoarea_citire(Station &station, const QDateTime &moment);
