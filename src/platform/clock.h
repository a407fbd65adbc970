#pragma once

#include <QDateTime>

/// The moment now, as the station counts time: local wall-clock time without a zone. It is held in
/// a QDateTime that counts in UTC, so that adding minutes, hours and days is plain calendar
/// arithmetic, and a daylight-saving change is just a clock that was set.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
};

/// The system's clock, to the millisecond.
class SystemClock final : public Clock
{
public:
    QDateTime now() const override;
};

/// A wall-clock moment in the form that Clock::now() returns.
QDateTime wallTime(QDate date, QTime time);

/// Converts days since zeroDateTime(), the form of the databases, to the millisecond. The fraction
/// is the time of day before day zero, too: -1.25 is 1899-12-29 06:00. Returns zeroDateTime() for
/// days outside the years 100 to 9999, and for NaN.
QDateTime momentFromDays(double days);

/// Day zero of date-times in the databases, 1899-12-30 00:00: the moment that means "never".
QDateTime zeroDateTime();
