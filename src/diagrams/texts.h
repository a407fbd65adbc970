#pragma once

#include "app/settings/channels.h"

#include <QString>

/// What the operator reads in the diagrams' windows.
namespace texts::diagrams
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
/// The name of a channel's series until the settings give it one.
inline QString designedSeries(int channel)
{
    return QStringLiteral("T%1").arg(channel);
}
inline QString alarmSeries()
{
    return QStringLiteral("AL");
}

// History
inline QString historyCaption()
{
    return QStringLiteral("Istoric diagrame 1.2");
}
inline QString datePrompt()
{
    return QStringLiteral("Introduceti data la care doriti generarea diagramelor (zz.ll.aaaa)");
}
inline QString firstDate()
{
    return QStringLiteral("01.01.2006");
}
inline QString generateButton()
{
    return QStringLiteral("Generare");
}
inline QString generating()
{
    return QStringLiteral("Generez diagramele, va rog asteptati...");
}
inline QString generated(const QString &date)
{
    return QStringLiteral("Diagramele la data de ") + date;
}
inline QString notGenerated()
{
    return QStringLiteral("Diagrame negenerate");
}
inline QString historyLimitsCaption()
{
    return QStringLiteral("Istoric Diagrame");
}
inline QString diagramOfSensors(int diagram)
{
    return QStringLiteral("Diagrama Senzori %1.").arg(channels::listOf(diagram));
}

// Pictures
inline QString savedButNotOpened(const QString &folder)
{
    return QStringLiteral(
               "Imaginile au fost salvate in dosarul\n%1\n\nDosarul nu a putut fi deschis.")
        .arg(folder);
}

// Printing
inline QString noPrinter()
{
    return QStringLiteral("Nu am reusit sa detectez imprimante in sistem!");
}
inline QString printedLine(const QString &diagram, const QString &date, const QString &time)
{
    return QStringLiteral("%1 la %2 %3").arg(diagram, date, time);
}
} // namespace texts::diagrams
