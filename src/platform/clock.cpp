#include "platform/clock.h"

QDateTime wallTime(QDate date, QTime time)
{
    return QDateTime(date, time, Qt::UTC);
}

QDateTime zeroDateTime()
{
    return wallTime(QDate(1899, 12, 30), QTime(0, 0));
}

QDateTime SystemClock::now() const
{
    const QDateTime local = QDateTime::currentDateTime();
    return wallTime(local.date(), local.time());
}
