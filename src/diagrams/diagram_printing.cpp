#include "diagrams/diagram_printing.h"
#include "app/settings/station.h"
#include "chart/chart_grid.h"
#include "diagrams/texts.h"
#include "platform/clock.h"
#include "platform/locale_date_text.h"
#include "platform/operator.h"
#include "platform/printers.h"
#include "storage/failure.h"

namespace
{

// Twips down the page.
constexpr double kGapBelowPicture = 200;
constexpr double kGapBelowDiagram = 1600;

/// Puts the default printer back, however printing ends.
class DefaultPrinterKept
{
public:
    explicit DefaultPrinterKept(Printers &printers)
        : m_printers(printers), m_device(printers.defaultDevice())
    {
    }
    ~DefaultPrinterKept() { m_printers.setDefaultDevice(m_device); }
    Q_DISABLE_COPY_MOVE(DefaultPrinterKept)

private:
    Printers &m_printers;
    QString m_device;
};

/// Makes a chart's backdrop white, as paper wants it, for as long as it lives.
class WhiteBackdrop
{
public:
    explicit WhiteBackdrop(ChartGrid &chart) : m_chart(chart)
    {
        m_chart.setBackdrop(ChartGrid::Backdrop::White);
    }
    ~WhiteBackdrop() { m_chart.setBackdrop(ChartGrid::Backdrop::Transparent); }
    Q_DISABLE_COPY_MOVE(WhiteBackdrop)

private:
    ChartGrid &m_chart;
};

QImage pictureForPaper(const DiagramPrinting &with, const Diagrama &record)
{
    const WhiteBackdrop white(*record.chart);
    return with.capture(record);
}

QString lineBelow(const DiagramPrinting &with, const Diagrama &record)
{
    const QDateTime now = with.clock.now();
    return texts::diagrams::printedLine(record.name, dateText(now.date(), with.station.locale),
                                        timeText(now.time(), with.station.locale));
}

void printPage(const DiagramPrinting &with, PrintJob &job)
{
    job.begin();
    const PrintJob::PageSize page = job.page();
    const double height = page.height / 3;
    double top = 0;
    for (const Diagrama &record : with.station.Diagrame) {
        job.drawPicture(pictureForPaper(with, record), top, {page.width, height});
        top = job.printLine(lineBelow(with, record), top + height + kGapBelowPicture);
        top += kGapBelowDiagram;
    }
    job.end();
}

void chooseAndPrint(const DiagramPrinting &with)
{
    const DefaultPrinterKept defaultKept(with.printers);
    const std::unique_ptr<PrintJob> job = with.printers.choose();
    if (with.printers.names().isEmpty())
        with.op.tell(texts::diagrams::noPrinter(), Operator::Icon::Exclamation);
    else if (job)
        printPage(with, *job);
}

} // namespace

void printDiagrams(const DiagramPrinting &with)
{
    if (const auto failure = attempt([&] { chooseAndPrint(with); }))
        with.op.tell(failure->text(), Operator::Icon::Critical);
}
