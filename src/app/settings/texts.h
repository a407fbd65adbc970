#pragma once

#include <QString>

namespace texts
{
inline QString configError()
{
    return QStringLiteral("Eroare in /config/config.ini");
}
inline QString tabGraphLimits()
{
    return QStringLiteral("Limite grafic");
}
inline QString tabAlarms()
{
    return QStringLiteral("Alarme");
}
inline QString tabScanOptions()
{
    return QStringLiteral("Optiuni scanare");
}
} // namespace texts
