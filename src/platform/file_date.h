#pragma once

#include <QString>

class Clock;
class QDate;

/// A date for file names: day.month.year, day and month with two digits, the year in full.
QString fileDate(QDate date);

/// The present fileDate(); then "_" and the hour if `cu_ora`, then "." and the minute if
/// `cu_minut`, both with two digits. Example: 07.03.2006_09.05
QString data_pentru_fisier(const Clock &clock, bool cu_ora, bool cu_minut);
