#pragma once

#include "app/settings/channels.h"

#include <QString>
#include <QStringList>

/// What the operator reads in the settings dialogs.
namespace texts::dialogs
{
// Options of one diagram
inline QString optionsCaption(int diagram)
{
    return QStringLiteral("Diagrama Canale %1.").arg(channels::listOf(diagram));
}
inline QString channelValues(int diagram)
{
    return (diagram == 0 ? QStringLiteral("Valori canale ") : QStringLiteral("Valori Canale ")) +
           channels::listOf(diagram);
}
inline QString graphLimitsTab()
{
    return QStringLiteral("Limite grafic");
}
inline QString alarmsTab()
{
    return QStringLiteral("Alarme");
}
inline QString scanOptionsTab()
{
    return QStringLiteral("Optiuni scanare");
}
inline QString graphLimitsTip()
{
    return QStringLiteral("Setare limite");
}
inline QString alarmsTip()
{
    return QStringLiteral("Setare alarme");
}
inline QString scanOptionsTip()
{
    return QStringLiteral("Setari diverse");
}
inline QString upperAlarm()
{
    return QStringLiteral("Alarma superioara");
}
inline QString lowerAlarm()
{
    return QStringLiteral("Alarma inferioara");
}
inline QString scanInterval()
{
    return QStringLiteral("Interval scanare");
}
/// In the order of the unit codes.
inline QStringList intervalUnits()
{
    return {QStringLiteral("Secunde"), QStringLiteral("Minute"), QStringLiteral("Ore"),
            QStringLiteral("Zile")};
}
inline QString databases()
{
    return QStringLiteral("Baze de date");
}
inline QString unusedName()
{
    return QStringLiteral("Momentan nefolosit");
}
inline QString storageFolder(const QString &folder)
{
    return QStringLiteral("Director salvare= ") + folder;
}
inline QString sharedOptionsNote()
{
    return QStringLiteral("Aceste optiuni sunt comune cu cele ale celeilalte diagrame.");
}
inline QString checkScanOptions()
{
    return QStringLiteral("Verificati corectitudinea campurilor!\r\n"
                          "Nu folositi in campurile cu valori numerice litere sau simboluri.\r\n"
                          "Nu folositi caracterele  */?\\|:<>\"in numele fisierelor.");
}

// Sensor names, title
inline QString sensorNamesCaption(int diagram)
{
    return QStringLiteral("Nume senzori diagrama %1").arg(diagram + 1);
}
inline QString sensorLabel(int number)
{
    return QStringLiteral("Senzor%1 :").arg(number);
}
inline QString titleCaption()
{
    return QStringLiteral("Titlu Diagrama");
}
} // namespace texts::dialogs
