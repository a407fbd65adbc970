#include "chart/chart_grid.h"
#include "chart/chart_view.h"

#include <QSignalSpy>
#include <QWheelEvent>
#include <QtTest/QTest>
#include <gtest/gtest.h>
#include <qcustomplot.h>

namespace
{

/// Three readings 2 degrees apart between alarm limits, shown on an axis from 0 to 150.
class ChartViewTest : public ::testing::Test
{
protected:
    ChartViewTest()
    {
        grid.setValueAxisMaximum(150);
        grid.setRowLabelsShown(true);
        fill();
        view.resize(900, 260);
        view.show();
        QCoreApplication::processEvents();
    }
    void fill()
    {
        const double values[] = {120, 122, 124, 10, 138};
        for (int column = 1; column <= 5; ++column)
            grid.fillColumn(column, values[column - 1]);
    }
    QPoint pixelOf(int series, int row) const
    {
        return {int(std::lround(plot.xAxis->coordToPixel(row))),
                int(std::lround(plot.yAxis->coordToPixel(grid.columnData(series)[row - 1u])))};
    }
    void drag(QPoint from, QPoint to)
    {
        QTest::mousePress(&plot, Qt::LeftButton, {}, from);
        QTest::mouseMove(&plot, (from + to) / 2);
        QTest::mouseMove(&plot, to);
        QTest::mouseRelease(&plot, Qt::LeftButton, {}, to);
        QCoreApplication::processEvents();
    }
    void zoom(QPoint at)
    {
        QWheelEvent wheel(at, plot.mapToGlobal(at), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&plot, &wheel);
    }
    void send(QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons down, QPoint at)
    {
        QMouseEvent event(type, at, plot.mapToGlobal(at), button, down, Qt::NoModifier);
        QCoreApplication::sendEvent(&plot, &event);
        plot.replot();
    }
    QPoint legendCentre() const { return plot.legend->outerRect().center(); }
    void expectAllRows(double maximum) const
    {
        EXPECT_EQ(plot.xAxis->range(), QCPRange(1, grid.rowCount()));
        EXPECT_EQ(plot.yAxis->range(), QCPRange(0, maximum));
    }

    ChartGrid grid{"Diagrama1", {"T1", "T2", "T3", "AL", "AL"}, 60};
    ChartView view{grid};
    QCustomPlot &plot = *view.findChild<QCustomPlot *>();
};

} // namespace

TEST_F(ChartViewTest, ManyEditsAreOneRepaint)
{
    QSignalSpy repaints(&plot, &QCustomPlot::afterReplot);
    fill();
    for (int row = 1; row <= 60; ++row) {
        grid.setRow(row);
        grid.setData(row);
    }
    grid.setColumnLabel("Camera");
    grid.setBackdrop(ChartGrid::Backdrop::Transparent);
    QTRY_COMPARE(repaints.size(), 1);
    QCoreApplication::processEvents();
    EXPECT_EQ(repaints.size(), 1);
    EXPECT_EQ(plot.graph(0)->data()->at(59)->value, 60);
}

TEST_F(ChartViewTest, PickTakesTheNearestLineAndPoint)
{
    QSignalSpy picks(&view, &ChartView::pointPicked);
    for (const int rows : {1, 60, 86400}) {
        grid.setRowCount(rows);
        fill();
        plot.replot();
        const QPoint along(rows == 1 ? 90 : 0, 0); // a single row's line goes across the plot
        for (const auto &[series, row] :
             {std::pair(1, 1), {2, (rows + 1) / 2}, {3, rows}, {5, std::min(rows, 7)}}) {
            QTest::mouseClick(&plot, Qt::LeftButton, {}, pixelOf(series, row) + along);
            ASSERT_FALSE(picks.isEmpty()) << series << ' ' << row;
            const QVariantList pick = picks.takeLast();
            EXPECT_EQ(pick.at(0).toInt(), series);
            EXPECT_NEAR(pick.at(1).toInt(), row, rows / 700) << "as exact as a pixel";
        }
    }
    picks.clear();
    QTest::mouseClick(&plot, Qt::LeftButton, {}, QPoint(450, 120)); // between the lines
    QTest::mouseClick(&plot, Qt::LeftButton, {}, legendCentre());
    QTest::mouseClick(&plot, Qt::RightButton, {}, pixelOf(2, 30));
    drag(pixelOf(2, 30), pixelOf(2, 30) + QPoint(40, 0));
    EXPECT_TRUE(picks.isEmpty());
}

TEST_F(ChartViewTest, DoubleClickOnThePlotRestoresTheLayout)
{
    const QPoint middle(450, 120);
    zoom(middle);
    drag(middle, middle + QPoint(5000, 30));
    EXPECT_EQ(plot.xAxis->range().lower, 1) << "dragging ends at the first row";
    EXPECT_LT(plot.xAxis->range().upper, 60);
    drag(middle, middle - QPoint(0, 5000));
    EXPECT_EQ(plot.yAxis->range().lower, 0) << "and at the limits";
    EXPECT_LT(plot.yAxis->range().upper, 150);
    grid.setColumnLabel("T9");
    QCoreApplication::processEvents();
    EXPECT_LT(plot.xAxis->range().upper, 60) << "a new name leaves the zoom alone";
    QTest::mouseDClick(&plot, Qt::LeftButton, {}, middle);
    plot.replot();
    expectAllRows(150);

    zoom(middle);
    grid.setValueAxisMaximum(150);
    grid.resetView();
    QCoreApplication::processEvents();
    expectAllRows(150); // the same limits, applied again

    zoom(middle);
    grid.setValueAxisMaximum(200);
    QCoreApplication::processEvents();
    expectAllRows(200);
    grid.setValueAxisMinimum(200);
    plot.replot();
    EXPECT_EQ(plot.yAxis->range(), QCPRange(199.5, 200.5)) << "equal limits";
}

TEST_F(ChartViewTest, LegendIsDraggedAndPutBack)
{
    const QRect home = plot.legend->outerRect();
    EXPECT_GT(home.left(), plot.axisRect()->right());
    drag(legendCentre(), QPoint(300, 100));
    EXPECT_TRUE(plot.axisRect()->rect().contains(plot.legend->outerRect()));
    expectAllRows(150); // the plot stood still
    drag(legendCentre(), QPoint(-500, -500));
    EXPECT_TRUE(plot.axisRect()->rect().contains(plot.legend->outerRect()));
    QTest::mouseDClick(&plot, Qt::LeftButton, {}, legendCentre());
    plot.replot();
    EXPECT_EQ(plot.legend->outerRect(), home);
}

/// A message box swallows the release of the drag that it interrupts.
TEST_F(ChartViewTest, DragEndsWithTheLeftButtonAlone)
{
    const QPoint middle(450, 120);
    zoom(middle);
    plot.replot();
    for (const QPoint from : {middle, legendCentre()}) {
        send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton, from);
        send(QEvent::MouseButtonPress, Qt::MiddleButton, Qt::LeftButton | Qt::MiddleButton, from);
        send(QEvent::MouseButtonRelease, Qt::MiddleButton, Qt::LeftButton, from);
        send(QEvent::MouseMove, Qt::NoButton, Qt::LeftButton, from - QPoint(40, 10));
        const QCPRange rows = plot.xAxis->range();
        const QPoint legend = legendCentre();
        send(QEvent::MouseMove, Qt::NoButton, Qt::NoButton, from - QPoint(90, 30));
        EXPECT_EQ(plot.xAxis->range(), rows);
        EXPECT_EQ(legendCentre(), legend);
        drag(middle, middle - QPoint(20, 0));
        EXPECT_NE(plot.xAxis->range(), rows) << "the plot can be dragged again";
    }
    EXPECT_TRUE(plot.axisRect()->rect().contains(legendCentre())) << "the legend was dragged too";
}

TEST_F(ChartViewTest, LooksTheSameBehindALockedDialog)
{
    grid.setBackdrop(ChartGrid::Backdrop::Transparent);
    const QImage before = view.image(Qt::lightGray);
    view.setEnabled(false);
    for (const double maximum : {200, 150}) { // applied, restored
        grid.setValueAxisMaximum(maximum);
        plot.replot();
    }
    EXPECT_EQ(view.image(Qt::lightGray), before);
    view.setEnabled(true);
    plot.replot();
    EXPECT_EQ(view.image(Qt::lightGray), before);
}

TEST_F(ChartViewTest, LettersStandOutFromWhatLiesBehind)
{
    drag(legendCentre(), QPoint(300, 100));
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(0x202020));
    dark.setColor(QPalette::WindowText, QColor(0xF0F0F0));
    view.setPalette(dark);
    for (const auto &[backdrop, behind] :
         {std::pair(ChartGrid::Backdrop::Transparent, 0x20), {ChartGrid::Backdrop::White, 0xFF}}) {
        grid.setBackdrop(backdrop);
        plot.replot();
        for (const QColor &ink : {plot.yAxis->tickLabelColor(), plot.legend->textColor()})
            EXPECT_GT(std::abs(ink.lightness() - behind), 150);
        EXPECT_EQ(plot.legend->brush().color().lightness(), behind);
    }
}

TEST_F(ChartViewTest, TicksAreReadableAtAnySize)
{
    struct {
        QSize size;
        int rows;
    } const charts[] = {{{560, 110}, 60}, {{1900, 320}, 60}, {{700, 150}, 86400}, {{4400, 300}, 3}};
    grid.setValueAxisMinimum(-20);
    for (const auto &chart : charts) {
        grid.setRowCount(chart.rows);
        view.resize(chart.size);
        plot.replot();
        const QVector<double> ticks = plot.xAxis->tickVector();
        const QVector<QString> labels = plot.xAxis->tickVectorLabels();
        const double spacing =
            plot.xAxis->coordToPixel(ticks.at(1)) - plot.xAxis->coordToPixel(ticks.at(0));
        const QFontMetrics metrics(plot.xAxis->tickLabelFont());
        EXPECT_GT(spacing, 1.2 * metrics.horizontalAdvance(labels.constLast())) << chart.rows;
        for (int i = 0; i < ticks.size(); ++i)
            EXPECT_EQ(labels.at(i), QString("R%1").arg(ticks.at(i))) << "whole rows only";
        EXPECT_EQ(plot.yAxis->tickVector().front(), -20) << "the limits have labels";
        EXPECT_EQ(plot.yAxis->tickVector().back(), 150);
    }
    const int letters = plot.legend->font().pixelSize();
    QFont large;
    large.setPixelSize(26);
    view.setFont(large);
    plot.replot();
    EXPECT_EQ(plot.legend->font().pixelSize(), 2 * letters) << "as large as the system asks for";
}
