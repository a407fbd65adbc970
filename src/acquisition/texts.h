#pragma once

#include <QString>

namespace texts::acquisition
{
inline QString communicationError()
{
    return QStringLiteral("Eroare de comunicare ! Verificati setarile aparatului si conexiunile.");
}
inline QString controlCentre()
{
    return QStringLiteral("Centru Control");
}
inline QString initDiagrams()
{
    return QStringLiteral("Initializare diagrame");
}
inline QString startMonitoring()
{
    return QStringLiteral("Start Monitorizare");
}
inline QString stopMonitoring()
{
    return QStringLiteral("Stop Monitorizare");
}
inline QString monitorActive()
{
    return QStringLiteral("Monitor activ!");
}
inline QString monitorStopped()
{
    return QStringLiteral("Monitor oprit.");
}
inline QString calibrationCaption()
{
    return QStringLiteral("Calibrare senzori");
}
inline QString calibrationLabel(const QString &sensorName)
{
    return QStringLiteral("Calibrare senzor ") + sensorName;
}
inline QString saveButton()
{
    return QStringLiteral("Salvare");
}
inline QString checkCalibrations()
{
    return QStringLiteral("Verificati corectitudinea campurilor");
}
} // namespace texts::acquisition
