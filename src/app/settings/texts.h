#pragma once

#include <QString>

namespace texts::settings
{
inline QString configError()
{
    return QStringLiteral("Eroare in /config/config.ini");
}
/// A tab of numbers holds something else than numbers.
inline QString checkFields()
{
    return QStringLiteral("Verificati corectitudinea campurilor.");
}
inline QString okButton()
{
    return QStringLiteral("OK");
}
inline QString cancelButton()
{
    return QStringLiteral("Cancel");
}
inline QString applyButton()
{
    return QStringLiteral("Apply");
}
inline QString saveDefaultsButton()
{
    return QStringLiteral("Salvare ca defaults");
}
inline QString restoreDefaultsButton()
{
    return QStringLiteral("Restaurare defaults");
}
inline QString upperLimit()
{
    return QStringLiteral("Limita superioara");
}
inline QString lowerLimit()
{
    return QStringLiteral("Limita inferioara");
}
} // namespace texts::settings
