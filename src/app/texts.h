#pragma once

#include <QString>

/// What the operator reads in more than one room.
namespace texts::app
{
/// Title of the application: message boxes, the main window's caption, the About box.
inline QString applicationTitle()
{
    return QStringLiteral("Monitorizare PLC");
}
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
} // namespace texts::app
