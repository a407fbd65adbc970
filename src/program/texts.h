#pragma once

#include <QString>

namespace texts::program
{
inline QString askArchiveNow()
{
    return QStringLiteral("Doriti sa salvati arhivele acum? (recomandat doar daca nu veti mai "
                          "reporni programul astazi)");
}

// About
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
        "Statie de monitorizare a unei autoclave: citeste prin linia seriala cele sase canale ale "
        "inregistratorului TOHO TRM-10C, le arata in doua diagrame, semnaleaza alarmele, "
        "pastreaza fiecare citire intr-o baza de date si arata din nou orice zi arhivata.");
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
    return QStringLiteral(
        "Programul este distribuit sub GNU GPL 3 sau mai nou, fara nicio garantie.");
}
inline QString systemInformation()
{
    return QStringLiteral("&Informatii sistem...");
}
inline QString operatingSystem(const QString &name)
{
    return QStringLiteral("Sistem: ") + name;
}
inline QString kernel(const QString &name, const QString &version, const QString &processor)
{
    return QStringLiteral("Nucleu: %1 %2, %3").arg(name, version, processor);
}
inline QString memory(const QString &size)
{
    return QStringLiteral("Memorie: ") + size;
}
inline QString screen(int width, int height, int dotsPerInch)
{
    return QStringLiteral("Ecran: %1 x %2 pixeli, %3 dpi").arg(width).arg(height).arg(dotsPerInch);
}
inline QString language(const QString &locale)
{
    return QStringLiteral("Limba si formate: ") + locale;
}
} // namespace texts::program
