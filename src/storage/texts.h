#pragma once

#include <QString>

namespace texts::storage
{
inline QString storageFileMissing()
{
    return QStringLiteral("Fisierul de stocare nu exista !!");
}
inline QString repaired(const QString &name)
{
    return QStringLiteral("S-a reparat baza de date %1 !").arg(name);
}
inline QString lockedByOther(const QString &name)
{
    return QStringLiteral("O aplicatie externa blocheaza baza de date %1 care trebuie reparata. Va "
                          "rog sa inchideti orice aplicatie externa cu care accesati baza de date "
                          "mentionata si apoi dati click pe OK pt. a porni procesul de reparare.")
        .arg(name);
}
inline QString storageEmpty(const QString &name)
{
    return QStringLiteral("Baza de date %1 e goala!").arg(name);
}
inline QString browserCaption()
{
    return QStringLiteral("Baze de date curente");
}
inline QString refresh()
{
    return QStringLiteral("Refresh");
}
} // namespace texts::storage
