#pragma once

#include <QString>

/// What the operator reads in the diagrams' windows.
namespace texts
{
inline QString diagramsCaption()
{
    return QStringLiteral("Diagrame");
}
inline QString designedTitle()
{
    return QStringLiteral("Temperatura (° Celsius)");
}
inline QString titleTip()
{
    return QStringLiteral("Dublu-click pt. modificare");
}
inline QString controlCentreButton()
{
    return QStringLiteral("Centrul de control");
}
inline QString alarmSeries()
{
    return QStringLiteral("AL");
}
} // namespace texts
