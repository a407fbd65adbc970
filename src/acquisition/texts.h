#pragma once

#include <QString>

namespace texts
{
inline QString communicationError()
{
    return QStringLiteral("Eroare de comunicare ! Verificati setarile aparatului si conexiunile.");
}
} // namespace texts
