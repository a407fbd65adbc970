#include "platform/file_date.h"
#include "platform/clock.h"

static QString twoDigits(int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QChar(u'0'));
}

QString fileDate(QDate date)
{
    return twoDigits(date.day()) + QLatin1Char('.') + twoDigits(date.month()) + QLatin1Char('.') +
           QString::number(date.year());
}

QString data_pentru_fisier(const Clock &clock, bool cu_ora, bool cu_minut)
{
    // One reading of the clock: the parts of a name must belong to the same moment.
    const QDateTime now = clock.now();
    QString text = fileDate(now.date());
    if (cu_ora)
        text += QLatin1Char('_') + twoDigits(now.time().hour());
    if (cu_minut)
        text += QLatin1Char('.') + twoDigits(now.time().minute());
    return text;
}
