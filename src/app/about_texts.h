#pragma once

#include <QString>

namespace texts::app
{
inline QString aboutCaption(const QString &title)
{
    return QStringLiteral("Despre ") + title;
}
inline QString version(const QString &number)
{
    return QStringLiteral("Versiunea ") + number;
}
inline QString aboutDescription()
{
    return QStringLiteral(
        "Stație de monitorizare a unei autoclave: citește prin linia serială cele șase canale ale "
        "înregistratorului TOHO TRM-10C, le arată în două diagrame, semnalează alarmele, "
        "păstrează fiecare citire într-o bază de date și arată din nou orice zi arhivată.");
}
inline QString librariesUsed()
{
    return QStringLiteral("Biblioteci folosite");
}
inline QString library(const QString &name, const QString &version, const QString &licence)
{
    return QStringLiteral("%1 %2 — %3").arg(name, version, licence);
}
inline QString ownLicence()
{
    return QStringLiteral("Programul este distribuit sub GNU GPL v3, fără nicio garanție.");
}
inline QString systemInformation()
{
    return QStringLiteral("&Informații sistem...");
}
inline QString systemInformationMissing()
{
    return QStringLiteral("Informațiile despre sistem nu sunt disponibile în acest moment.");
}
} // namespace texts::app
