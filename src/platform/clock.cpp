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
    constexpr double kLastDay = 2'958'465; // 9999-12-31, the last one the database program knows
    if (!(std::abs(days) <= kLastDay))
        return zeroDateTime();
    return zeroDateTime().addMSecs(std::llround(days * kMillisecondsPerDay));
}

QDateTime SystemClock::now() const
{
    const QDateTime local = QDateTime::currentDateTime();
    return wallTime(local.date(), local.time());
}
