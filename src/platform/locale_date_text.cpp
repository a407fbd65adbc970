#include "platform/locale_date_text.h"
#include "platform/clock.h"

QString dateText(QDate date, const QLocale &locale)
{
    return locale.toString(date, QLocale::ShortFormat);
}

QString timeText(QTime time, const QLocale &locale)
{
    // The long form names the time zone, the short one often lacks the seconds.
    QString format = locale.timeFormat(QLocale::ShortFormat);
    const qsizetype minutes = format.indexOf(QLatin1String("mm"));
    if (minutes > 0 && !format.contains(QLatin1String("ss")))
        format.insert(minutes + 2, format[minutes - 1] + QStringLiteral("ss"));
    return locale.toString(time, format);
}

QString dateTimeText(const QDateTime &moment, const QLocale &locale)
{
    const QTime wholeSeconds(moment.time().hour(), moment.time().minute(), moment.time().second());
    if (moment.date() == zeroDateTime().date())
        return timeText(wholeSeconds, locale);
    QString date = dateText(moment.date(), locale);
    if (wholeSeconds == QTime(0, 0))
        return date;
    return date + QLatin1Char(' ') + timeText(wholeSeconds, locale);
}
