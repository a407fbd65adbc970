#pragma once

#include <QString>

/// Keys of the settings file that more than one room reads or writes. A key ends in " =".
namespace keys
{
/// `sensor` counts from 1 within its diagram.
inline QString sensorName(const QString &diagram, int sensor)
{
    return QStringLiteral("%1.Senzor%2.Nume =").arg(diagram).arg(sensor);
}
inline QString title(const QString &diagram)
{
    return diagram + QStringLiteral(".Titlu =");
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
} // namespace keys
