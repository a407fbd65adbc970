#pragma once

#include <QString>
#include <QStringList>
#include <memory>

class QImage;

/// One document on one printer. All lengths are twips, measured from the upper left corner of the
/// printable area. A job that was not ended is abandoned when it is destroyed.
class PrintJob
{
public:
    struct PageSize {
        double width = 0;
        double height = 0;
    };

    virtual ~PrintJob() = default;
    /// Starts the document, in landscape. This and every function below throws RuntimeError 482
    /// when the printer fails, or has gone since it was chosen.
    virtual void begin() = 0;
    /// Size of the printable area.
    virtual PageSize page() const = 0;
    /// Draws a picture at the left edge, scaled to that size.
    virtual void drawPicture(const QImage &picture, double top, PageSize size) = 0;
    /// Prints one line of text at the left edge; returns the position below it.
    virtual double printLine(const QString &text, double top) = 0;
    /// Sends the document to the printer.
    virtual void end() = 0;
};

/// The system's printers.
class Printers
{
public:
    virtual ~Printers() = default;
    virtual QStringList names() const = 0;
    /// Device text of the default printer.
    virtual QString defaultDevice() const = 0;
    /// Makes that printer the default again and notifies running programs. Does nothing on systems
    /// where choosing a printer for one job leaves the default alone.
    virtual void setDefaultDevice(const QString &device) = 0;
    /// Lets the operator choose a printer; null when there is none, or the dialog was cancelled.
    virtual std::unique_ptr<PrintJob> choose() = 0;
};
