#pragma once

#include "platform/runtime_error.h"
#include "platform/shell.h"

#include <QStringList>

/// Records what was opened.
class FakeShell final : public Shell
{
public:
    void open(const QString &path, Window window) override
    {
        if (fails)
            throw RuntimeError(RuntimeError::FileNotFound);
        opened += path + (window == Window::Minimised ? " minimised" : "");
    }
    QStringList opened;
    bool fails = false;
};
