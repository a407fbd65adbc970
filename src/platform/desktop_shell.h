#pragma once

#include "platform/shell.h"

/// explorer.exe on Windows, the desktop's own opener elsewhere.
class DesktopShell final : public Shell
{
public:
    void open(const QString &path, Window window) override;
};
