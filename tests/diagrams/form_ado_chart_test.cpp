#include "chart/chart_view.h"
#include "diagrams/form_ado_chart.h"
#include "diagrams/frm_istoric.h"
#include "tests/diagrams/history_rig.h"
#include "tests/support/controls.h"

#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScrollBar>
#include <QSignalSpy>
#include <qcustomplot.h>

namespace
{

class FormAdoChartTest : public HistoryRig
{
protected:
    FormAdoChartTest()
    {
        area.resize(kMain);
        area.show();
        frame = area.addSubWindow(form);
        frame->show();
        form->load(kMain);
        QCoreApplication::processEvents(); // what is not yet exposed is not painted
    }
    void generate(const QString &date)
    {
        control<QLineEdit>(*form, "Text1").setText(date);
        press(*form, "Command1");
    }
    QString status() const { return control<QLabel>(*form, "LabelStare").text(); }
    QWidget &named(const char *name) const { return control<QWidget>(*form, name); }

    static constexpr QSize kMain{1020, 690};
    QMdiArea area;
    FormAdoChart *form = new FormAdoChart(station, history, op, time);
    QMdiSubWindow *frame = nullptr;
};

} // namespace

TEST_F(FormAdoChartTest, DrawsTheTypedDayAndSaysWhich)
{
    form->setFocus();
    EXPECT_EQ(form->focusWidget(), &named("Text1"));
    EXPECT_EQ(status(), "Diagrame negenerate");
    EXPECT_EQ(control<QLabel>(*form, "LabelPres").text(), station.Diagrame[1].Titlu);
    EXPECT_TRUE(named("LabelWait").isHidden());
    EXPECT_FALSE(named("HScroll1").isEnabled());

    writeDay(120);
    station.locale = QLocale(QLocale::Swedish);
    generate("7.3.26");
    EXPECT_TRUE(named("LabelWait").isHidden());
    EXPECT_EQ(status(), "Diagramele la data de 7-3-26");
    EXPECT_TRUE(control<QLabel>(*form, "Label1").text().endsWith("(zz-ll-aaaa)"));

    auto &plot = *control<ChartView>(*form, "MSChartAdo2").findChild<QCustomPlot *>();
    plot.replot();
    QTest::mouseClick(
        &plot, Qt::LeftButton, {},
        QPointF(plot.xAxis->coordToPixel(60), plot.yAxis->coordToPixel(40.6)).toPoint());
    EXPECT_EQ(control<QLabel>(*form, "LabelDate").text(), "T4 = 40,6\r\n2026-03-07 00:01:00");
}

TEST_F(FormAdoChartTest, LongDaysWidenTheChartsUntilADayFails)
{
    writeDay(300);
    generate("07.03.2026");
    EXPECT_EQ(named("MSChartAdo1").width(), named("Frame1Chart1").width());
    EXPECT_FALSE(named("LegendChart1").isVisible());

    QFile::remove(archive());
    writeDay(1295);
    generate("07.03.2026");
    auto &scroll = control<QScrollBar>(*form, "HScroll2");
    const QWidget &viewport = named("Frame1Chart2");
    const QWidget &inner = named("Frame2Chart2");
    EXPECT_EQ(named("MSChartAdo2").width(), 4400);
    EXPECT_EQ(inner.width(), 4400);
    EXPECT_TRUE(named("LegendChart2").isVisible()) << "the legend itself is out of sight";
    EXPECT_EQ(scroll.minimum(), -32767);
    EXPECT_EQ(scroll.maximum(), 66000 - 15 * viewport.width() - 32767);
    EXPECT_EQ(scroll.geometry().left(), viewport.geometry().left());
    EXPECT_NEAR(scroll.y(), viewport.geometry().bottom() + 1 + 2, 1) << "30 twips below";

    scroll.setValue(scroll.maximum());
    EXPECT_EQ(inner.x(), viewport.width() - 4400) << "the end of the day is reached";
    EXPECT_EQ(named("Frame2Chart1").x(), 0) << "each chart has its own scroll bar";

    scroll.setValue(-32767 + 15 * 1000);
    form->followMainWindow(QSize(800, 560));
    EXPECT_EQ(frame->width(), 796);
    EXPECT_EQ(named("MSChartAdo2").width(), 4400);
    EXPECT_EQ(inner.x(), -1000) << "the same hour stays in sight";
    generate("07.03.2026");
    EXPECT_EQ(inner.x(), 0) << "a day begins at its start";

    op.meanwhile = [this] { // the window is cleared before the failure is told
        EXPECT_TRUE(named("LabelWait").isHidden());
        EXPECT_EQ(status(), "Diagrame negenerate");
        EXPECT_EQ(history.chart(0).rowCount(), kStationRows);
        EXPECT_EQ(named("MSChartAdo1").width(), named("Frame1Chart1").width());
    };
    generate("08.03.2026");
    ASSERT_EQ(op.told.size(), 1);
    EXPECT_TRUE(op.told[0].startsWith("3024 ")) << op.told[0].toStdString();
    EXPECT_EQ(op.lastIcon, Operator::Icon::Exclamation);
}

TEST_F(FormAdoChartTest, LimitsAreAppliedSavedRestoredAndRefused)
{
    FrmIstoric dialog{station, settings, QSize(15360, 11520)};
    QSignalSpy refused(&dialog, &DefaultsDialog::refused);
    dialog.show();
    EXPECT_EQ(textOf(dialog, "LimSupTextTemp"), "150");
    type(dialog, "LimSupTextTemp", "120,5");
    type(dialog, "LimInfTextPres", "-10");
    press(dialog, "cmdApply");
    EXPECT_EQ(textOf(dialog, "LimSupTextTemp"), "120.5");
    EXPECT_EQ(history.chart(0).valueAxisMaximum(), 120.5);
    EXPECT_EQ(history.chart(1).valueAxisMinimum(), -10);
    EXPECT_FALSE(folder.config().contains("120.5")) << "only the save button writes";

    press(dialog, "cmdSaveDef");
    EXPECT_TRUE(folder.config().contains("Istoric.Diagrama1.limita_maxima =,120.5\r\n"));
    EXPECT_TRUE(folder.config().contains("Istoric.Diagrama2.limita_minima =,-10\r\n"));
    folder.setValue("Istoric.Diagrama1.limita_minima =", "5");
    press(dialog, "cmdRestDef");
    EXPECT_EQ(history.chart(0).valueAxisMinimum(), 5);
    EXPECT_EQ(textOf(dialog, "LimInfTextTemp"), "5");

    type(dialog, "LimSupTextPres", "77");
    type(dialog, "LimInfTextPres", "zece");
    press(dialog, "cmdOK");
    ASSERT_EQ(refused.size(), 1);
    EXPECT_EQ(refused[0][0], "Verificati corectitudinea campurilor.");
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(history.chart(1).valueAxisMaximum(), 150) << "one bad number changes nothing";
    type(dialog, "LimInfTextPres", "-5");
    press(dialog, "cmdOK");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(history.chart(1).valueAxisMaximum(), 77);
}
