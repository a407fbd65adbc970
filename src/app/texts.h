#pragma once

#include <QString>

namespace texts::app
{
/// Title of the application: message boxes, the main window's caption, the About box.
inline QString applicationTitle()
{
    return QStringLiteral("Monitorizare PLC");
}
} // namespace texts::app
