#include "app/settings/schedule.h"
#include "platform/runtime_error.h"

/// `unit` as Diagrama::masura_interval.
static QDateTime addInterval(const QDateTime &moment, qint16 count, qint16 unit)
{
    switch (unit) {
    case 0:
        return moment.addSecs(count);
    case 1:
        return moment.addSecs(qint64(count) * 60);
    case 2:
        return moment.addSecs(qint64(count) * 3600);
    case 3:
        return moment.addDays(count);
    default:
        throw RuntimeError(RuntimeError::InvalidProcedureCall);
    }
}

QDateTime avans_interval(const Station &station, const QDateTime &now)
{
    if (station.Diagrame.empty())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    const Diagrama &first = station.Diagrame.front();
    return addInterval(now, first.interval_scanare, first.masura_interval);
}

void calculeaza_urmatoarea_citire(Station &station, const QDateTime &moment)
{
    station.nextSampling = avans_interval(station, moment);
}
