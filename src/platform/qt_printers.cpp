#include "platform/qt_printers.h"
#include "platform/runtime_error.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <array>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <cups/cups.h>
#endif

namespace
{

constexpr double kTwipsPerPoint = 20;
constexpr double kTwipsPerInch = 1440;
constexpr int kTextPoints = 10;

class QtPrintJob final : public PrintJob
{
public:
    explicit QtPrintJob(std::unique_ptr<QPrinter> printer) : m_printer(std::move(printer)) {}

    ~QtPrintJob() override
    {
        if (!m_painter.isActive())
            return;
        m_printer->abort();
        m_painter.end();
    }

    void begin() override
    {
        check(isThere());
        m_printer->setPageOrientation(QPageLayout::Landscape);
        m_printer->setDocName(QApplication::applicationDisplayName());
        check(m_painter.begin(m_printer.get()));
        const double dotsPerTwip = m_printer->resolution() / kTwipsPerInch;
        m_painter.scale(dotsPerTwip, dotsPerTwip);
        m_painter.setRenderHint(QPainter::SmoothPixmapTransform);
    }

    PageSize page() const override
    {
        const QRectF area = m_printer->pageRect(QPrinter::Point);
        return {area.width() * kTwipsPerPoint, area.height() * kTwipsPerPoint};
    }

    void drawPicture(const QImage &picture, double top, PageSize size) override
    {
        m_painter.drawImage(QRectF(0, top, size.width, size.height), picture);
        check(true);
    }

    double printLine(const QString &text, double top) override
    {
        QFont font = QApplication::font();
        font.setPixelSize(static_cast<int>(kTextPoints * kTwipsPerPoint)); // a pixel is a twip here
        m_painter.setFont(font);
        const QFontMetricsF metrics(font);
        m_painter.drawText(QPointF(0, top + metrics.ascent()), text);
        check(true);
        return top + metrics.lineSpacing();
    }

    void end() override { check(m_painter.end() && wasTaken()); }

private:
    /// True when it is printed, not written to a file.
    bool isQueued() const { return m_printer->outputFormat() == QPrinter::NativeFormat; }

    /// The toolkit would silently replace a printer that is gone by the default one.
    bool isThere() const
    {
        return !isQueued() ||
               QPrinterInfo::availablePrinterNames().contains(m_printer->printerName());
    }

#ifdef Q_OS_WIN
    /// A refusal is reported when the document begins.
    static bool wasTaken()
    {
        return true;
    }
#else
    /// The toolkit hands the document to the print service within QPainter::end(), in this thread,
    /// and drops the answer: the queue takes no jobs, the service has gone, the user may not print.
    bool wasTaken() const
    {
        return !isQueued() || cupsLastError() <= IPP_STATUS_OK_CONFLICTING;
    }
#endif

    void check(bool done) const
    {
        const QPrinter::PrinterState state = m_printer->printerState();
        if (!done || state == QPrinter::Error || state == QPrinter::Aborted)
            throw RuntimeError(RuntimeError::PrinterError);
    }

    std::unique_ptr<QPrinter> m_printer;
    QPainter m_painter; // destroyed before its printer
};

} // namespace

std::unique_ptr<PrintJob> printJobOn(std::unique_ptr<QPrinter> printer)
{
    return std::make_unique<QtPrintJob>(std::move(printer));
}

QStringList QtPrinters::names() const
{
    return QPrinterInfo::availablePrinterNames();
}

std::unique_ptr<PrintJob> QtPrinters::choose()
{
    if (names().isEmpty())
        return nullptr; // the dialog would have nothing to show
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    QPrintDialog dialog(printer.get(), QApplication::activeWindow());
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
    if (dialog.exec() != QDialog::Accepted)
        return nullptr;
    return printJobOn(std::move(printer));
}

#ifdef Q_OS_WIN
QString QtPrinters::defaultDevice() const
{
    std::array<wchar_t, 1024> buffer{};
    const DWORD length = GetProfileStringW(L"windows", L"device", L"", buffer.data(),
                                           static_cast<DWORD>(buffer.size()));
    return QString::fromWCharArray(buffer.data(), static_cast<qsizetype>(length)).trimmed();
}

void QtPrinters::setDefaultDevice(const QString &device)
{
    if (device.isEmpty() || device == defaultDevice())
        return; // nothing to restore: every program that listens would reload its printers
    constexpr UINT kPatience = 1000; // ms; another program's hung window must not block this one
    WriteProfileStringW(L"windows", L"device", reinterpret_cast<const wchar_t *>(device.utf16()));
    SendMessageTimeoutW(HWND_BROADCAST, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"windows"),
                        SMTO_ABORTIFHUNG, kPatience, nullptr);
}
#else
QString QtPrinters::defaultDevice() const
{
    return QPrinterInfo::defaultPrinterName();
}

void QtPrinters::setDefaultDevice(const QString &) {}
#endif
