#pragma once

#include <QDateTime>
#include <QLocale>

/// Dates and times as the system shows them.

/// The system's short date.
QString dateText(QDate date, const QLocale &locale);
/// The system's time of day with seconds.
QString timeText(QTime time, const QLocale &locale);
/// Default text of a date-time: date, blank, time; only the date at midnight, only the time on day
/// zero (1899-12-30). So the zero date-time reads as midnight.
QString dateTimeText(const QDateTime &moment, const QLocale &locale);
