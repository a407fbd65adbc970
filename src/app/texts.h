#pragma once

#include <QString>

namespace texts::app
{
/// Title of the application: message boxes, the main window's caption, the About box.
inline QString applicationTitle()
{
    return QStringLiteral("Monitorizare PLC");
}
inline QString askArchiveNow()
{
    return QStringLiteral("Doriti sa salvati arhivele acum? (recomandat doar daca nu veti mai "
                          "reporni programul astazi)");
}
} // namespace texts::app
