#pragma once

#include "platform/printers.h"

class QPrinter;
class QWidget;

/// The printers that the toolkit knows, chosen in its print dialog.
class QtPrinters final : public Printers
{
public:
    QStringList names() const override;
    /// On Windows key "device" of profile section "windows". Elsewhere the default printer's name.
    QString defaultDevice() const override;
    /// Only Windows keeps one default printer for all programs; elsewhere the print dialog never
    /// changes the user's default, so there is nothing to put back.
    void setDefaultDevice(const QString &device) override;
    std::unique_ptr<PrintJob> choose() override;
};

/// A document on a printer, or in the printer's output file.
std::unique_ptr<PrintJob> printJobOn(std::unique_ptr<QPrinter> printer);
