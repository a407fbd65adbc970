#pragma once

#include "platform/printers.h"
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

/// No printers, unless a test lists some. Choosing one in the dialog makes it the default, as some
/// systems do.
class FakePrinters final : public Printers
{
public:
    QStringList names() const override { return list; }
    QString defaultDevice() const override { return device; }
    void setDefaultDevice(const QString &text) override { device = text; }
    std::unique_ptr<PrintJob> choose() override
    {
        device = QStringLiteral("Laser,winspool,LPT1");
        return std::move(next);
    }
    QStringList list;
    QString device = QStringLiteral("Matriceala,winspool,LPT2");
    std::unique_ptr<PrintJob> next; ///< null: the operator cancels
};
