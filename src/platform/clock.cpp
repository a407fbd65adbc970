#include "platform/clock.h"

#include <cmath>

QDateTime wallTime(QDate date, QTime time)
{
    return QDateTime(date, time, Qt::UTC);
}

QDateTime zeroDateTime()
{
    return wallTime(QDate(1899, 12, 30), QTime(0, 0));
}

QDateTime momentFromDays(double days)
{
    constexpr double kMillisecondsPerDay = 86'400'000;
    constexpr double kFirstDay = -657'434; // 0100-01-01 and 9999-12-31: what the database program
    constexpr double kLastDay = 2'958'465; // knows
    const double wholeDays = std::trunc(days);
    if (!(wholeDays >= kFirstDay && wholeDays <= kLastDay))
        return zeroDateTime();
    // The fraction counts forward from the day's midnight, before day zero too.
    const double timeOfDay = std::abs(days - wholeDays) * kMillisecondsPerDay;
    return zeroDateTime().addDays(std::llround(wholeDays)).addMSecs(std::llround(timeOfDay));
}

QDateTime SystemClock::now() const
{
    const QDateTime local = QDateTime::currentDateTime();
    return wallTime(local.date(), local.time());
}
