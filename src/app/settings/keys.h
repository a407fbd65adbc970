#pragma once

#include <QString>

/// The keys of the settings file. A key ends in " ="; `diagram` is a diagram's name.
namespace keys
{
inline QString ofDiagram(const QString &diagram, QLatin1String setting)
{
    return diagram + QLatin1Char('.') + setting + QLatin1String(" =");
}
inline QString lowerLimit(const QString &diagram)
{
    return ofDiagram(diagram, QLatin1String("limita_minima"));
}
inline QString upperLimit(const QString &diagram)
{
    return ofDiagram(diagram, QLatin1String("limita_maxima"));
}
inline QString lowerAlarm(const QString &diagram)
{
    return ofDiagram(diagram, QLatin1String("alarma_minim"));
}
inline QString upperAlarm(const QString &diagram)
{
    return ofDiagram(diagram, QLatin1String("alarma_maxim"));
}
inline QString scanInterval(const QString &diagram)
{
    return ofDiagram(diagram, QLatin1String("interval_scanare"));
}
inline QString scanUnit(const QString &diagram)
{
    return ofDiagram(diagram, QLatin1String("masura_interval"));
}
inline QString title(const QString &diagram)
{
    return ofDiagram(diagram, QLatin1String("Titlu"));
}
/// The name under which a history diagram keeps its limits.
inline QString historyOf(const QString &diagram)
{
    return QStringLiteral("Istoric.") + diagram;
}
/// No key of its own, but what a sensor's keys are made of. `number` counts from 1 in its diagram.
inline QString sensor(const QString &diagram, int number)
{
    return QStringLiteral("%1.Senzor%2").arg(diagram).arg(number);
}
inline QString sensorName(const QString &diagram, int number)
{
    return ofDiagram(sensor(diagram, number), QLatin1String("Nume"));
}
inline QString calibration(const QString &sensorKey)
{
    return QStringLiteral("Calibrare.%1 =").arg(sensorKey);
}
/// `number` counts from 1.
inline QString storageName(int number)
{
    return QStringLiteral("NumeFisier%1 =").arg(number);
}
inline QString commPort()
{
    return QStringLiteral("ControlPlc.CommPort =");
}
inline QString lineSettings()
{
    return QStringLiteral("ControlPlc.Settings =");
}
} // namespace keys
