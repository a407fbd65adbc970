#include "chart/chart_view.h"
#include "diagrams/diagram_printing.h"
#include "diagrams/form1.h"
#include "platform/qt_printers.h"
#include "tests/diagrams/diagrams_rig.h"
#include "tests/jet/mdbtools.h"
#include "tests/support/controls.h"
#include "tests/support/fake_desktop.h"

#include <QDir>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPrinter>
#include <QRegularExpression>

namespace
{

/// Form1 with a sample in it, and its pictures.
class PicturesTest : public DiagramsRig
{
protected:
    PicturesTest()
    {
        area.resize(1020, 690);
        area.show();
        form = new Form1(station, live);
        area.addSubWindow(form)->show();
        form->load(area.size());
        sample(75);
    }
    void save() { saveDiagramImages({station, capture, time, shell, op}); }
    QStringList files() const { return QDir(station.imageFolder()).entryList(QDir::Files); }

    QMdiArea area;
    Form1 *form;
    FakeShell shell;
    DiagramCapture capture = [this](const Diagrama &record) { return form->capture(record); };
};

bool contains(const QImage &picture, QRgb colour)
{
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixel(x, y) == colour)
                return true;
    return false;
}

} // namespace

TEST_F(PicturesTest, OneBitmapPerDiagramShowsWhatIsOnTheScreen)
{
    const QStringList names{"Diagrama1_07.03.2026_09.05.bmp", "Diagrama2_07.03.2026_09.05.bmp"};
    save();
    EXPECT_EQ(files(), names);
    EXPECT_EQ(shell.opened, QStringList(station.imageFolder() + " minimised"));
    save();
    EXPECT_EQ(files(), names) << "the same minute is replaced";
    time.setClock(wallTime(QDate(2026, 11, 21), QTime(23, 59, 59)));
    save();
    EXPECT_TRUE(files().contains("Diagrama2_21.11.2026_23.59.bmp"));

    const QImage picture(station.imageFolder() + names[0]);
    EXPECT_EQ(picture.size(), control<ChartView>(*form, "MSChart1").size() + QSize(3, 3));
    EXPECT_FALSE(picture.hasAlphaChannel());
    EXPECT_EQ(picture.pixelColor(1, 1), form->palette().color(QPalette::Window));
    EXPECT_TRUE(contains(picture, 0xFFD55E00)) << "alarm lines";
    EXPECT_TRUE(contains(picture, 0xFF0072B2)) << "first sensor";
}

TEST_F(PicturesTest, AFolderThatDoesNotOpenAndAPictureThatCannotBeSavedAreToldApart)
{
    shell.fails = true;
    save();
    EXPECT_EQ(files().size(), 2);
    EXPECT_EQ(op.told.takeLast(), "Imaginile au fost salvate in dosarul\n" +
                                      QDir::toNativeSeparators(station.imageFolder()) +
                                      "\n\nDosarul nu a putut fi deschis.");

    QDir(station.imageFolder()).removeRecursively();
    shell.fails = false;
    save();
    EXPECT_EQ(op.told, QStringList("76 Path not found"));
    EXPECT_FALSE(QDir(station.imageFolder()).exists());
    EXPECT_TRUE(shell.opened.isEmpty());
}

namespace
{

/// Writes down what is printed.
class FakeJob final : public PrintJob
{
public:
    explicit FakeJob(QStringList &log) : m_log(log) {}
    void begin() override { m_log += "begin"; }
    PageSize page() const override { return {15000, 9000}; }
    void drawPicture(const QImage &picture, double top, PageSize size) override
    {
        for (const QPoint corner : {QPoint(1, 1), picture.rect().bottomRight()})
            EXPECT_EQ(picture.pixelColor(corner), Qt::white) << "paper has no window colour";
        m_log += QString("picture %1 %2x%3").arg(top).arg(size.width).arg(size.height);
    }
    double printLine(const QString &text, double top) override
    {
        m_log += QString("line %1: %2").arg(top).arg(text);
        return top + 240;
    }
    void end() override { m_log += "end"; }

private:
    QStringList &m_log;
};

class PrintingTest : public PicturesTest
{
protected:
    PrintingTest() { printers.list = {QStringLiteral("Laser")}; }
    void print() { printDiagrams({station, capture, printers, op, time}); }
    void expectAllPutBack()
    {
        EXPECT_EQ(printers.device, "Matriceala,winspool,LPT2");
        for (const Diagrama &record : station.Diagrame)
            EXPECT_EQ(record.chart->backdrop(), ChartGrid::Backdrop::Transparent);
    }
    FakePrinters printers;
};

} // namespace

TEST_F(PrintingTest, BothDiagramsStandOnOnePageWithTheirLines)
{
    print();
    EXPECT_TRUE(op.told.isEmpty()) << "the operator cancelled";
    expectAllPutBack();
    QStringList log;
    printers.next = std::make_unique<FakeJob>(log);
    print();
    EXPECT_EQ(log,
              (QStringList{"begin", "picture 0 15000x3000",
                           "line 3200: Diagrama1 la 07.03.2026 09:05:01", "picture 5040 15000x3000",
                           "line 8240: Diagrama2 la 07.03.2026 09:05:01", "end"}));
    EXPECT_TRUE(op.told.isEmpty());
    expectAllPutBack();

    printers.list.clear();
    print();
    EXPECT_EQ(op.told, QStringList("Nu am reusit sa detectez imprimante in sistem!"));
    EXPECT_EQ(op.lastIcon, Operator::Icon::Exclamation);
    expectAllPutBack();
}

TEST_F(PrintingTest, APdfHoldsThePage)
{
    const auto printerInto = [](const QString &file) {
        auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setPageSize(QPageSize(QPageSize::A4));
        printer->setOutputFileName(file);
        return printJobOn(std::move(printer));
    };
    const QString file = folder.path() + QStringLiteral("/pagina.pdf");
    printers.next = printerInto(file);
    print();
    EXPECT_TRUE(op.told.isEmpty());
    const std::string tool = jet::toolName(file.toStdU16String());
    const QString text = QString::fromStdString(jet::outputOf({"pdftotext", "-layout", tool, "-"}));
    EXPECT_TRUE(text.contains("Diagrama1 la 07.03.2026 09:05:01")) << text.toStdString();
    EXPECT_TRUE(text.contains("Diagrama2 la 07.03.2026 09:05:01"));
    const QString about = QString::fromStdString(jet::outputOf({"pdfinfo", tool}));
    EXPECT_TRUE(about.contains(QRegularExpression("Pages: +1\n"))) << about.toStdString();
    EXPECT_TRUE(about.contains(QRegularExpression("Page size: +842 x 595"))) << "landscape";

    printers.next = printerInto(folder.path() + QStringLiteral("/lipsa/pagina.pdf"));
    op.meanwhile = [this] { expectAllPutBack(); };
    print();
    EXPECT_EQ(op.told, QStringList("482 Printer error"));
    EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);
}
