#include "chart/chart_view.h"
#include "chart/chart_grid.h"
#include "chart/movable_legend.h"
#include "chart/plot_style.h"

#include <QApplication>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <algorithm>

namespace
{

/// What an axis shows on both sides of the only value it has.
constexpr double kRoomBesideOne = 0.5;

/// A single row lies in the middle.
QCPRange rowsInSight(int rowCount)
{
    if (rowCount == 1)
        return {1 - kRoomBesideOne, 1 + kRoomBesideOne};
    return QCPRange(1, std::max(2, rowCount));
}

QVector<QCPGraphData> pointsOf(std::span<const double> rows)
{
    if (rows.size() == 1) { // a single point has no line: draw it across the visible range
        const QCPRange all = rowsInSight(1);
        return {{all.lower, rows[0]}, {all.upper, rows[0]}};
    }
    QVector<QCPGraphData> points;
    points.reserve(static_cast<qsizetype>(rows.size()));
    double row = 1;
    for (const double value : rows)
        points.append({row++, value});
    return points;
}

/// QCustomPlot keeps every mouse event and drags with any button; here only the left button acts,
/// the others are left to the parent.
class Plot final : public QCustomPlot
{
public:
    using QCustomPlot::QCustomPlot;

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        if (event->button() != Qt::LeftButton)
            return event->ignore();
        releaseLost(*event);
        m_leftDown = true;
        QCustomPlot::mousePressEvent(event);
    }
    void mouseMoveEvent(QMouseEvent *event) override
    {
        if (!event->buttons().testFlag(Qt::LeftButton))
            releaseLost(*event);
        QCustomPlot::mouseMoveEvent(event);
    }
    void mouseReleaseEvent(QMouseEvent *event) override
    {
        if (event->button() != Qt::LeftButton)
            return event->ignore();
        m_leftDown = false;
        QCustomPlot::mouseReleaseEvent(event);
    }

private:
    /// A message box that opens during a drag swallows the release: the drag would continue without
    /// a button.
    void releaseLost(const QMouseEvent &event)
    {
        if (!m_leftDown)
            return;
        QMouseEvent release(QEvent::MouseButtonRelease, event.position(), event.globalPosition(),
                            Qt::LeftButton, event.buttons(), event.modifiers());
        mouseReleaseEvent(&release);
    }

    bool m_leftDown = false;
};

} // namespace

ChartView::ChartView(ChartGrid &grid, QWidget *parent)
    : QWidget(parent), m_grid(grid), m_plot(new Plot(this)), m_legend(new MovableLegend(*m_plot)),
      m_valueTicker(QSharedPointer<ValueTicker>::create())
{
    // The plot would otherwise paint a transparent backdrop black.
    m_plot->setAttribute(Qt::WA_OpaquePaintEvent, false);
    m_plot->setAttribute(Qt::WA_NoMousePropagation, false);
    m_plot->setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    m_plot->setNoAntialiasingOnDrag(true);
    applyStyle(*m_plot);
    m_plot->yAxis->setTicker(m_valueTicker);
    createSeries();
    connectGrid();
    connectMouse();
}

void ChartView::createSeries()
{
    for (int series = 0; series < m_grid.columnCount(); ++series)
        m_plot->addGraph()->setSelectable(QCP::stNone);
}

void ChartView::connectGrid()
{
    const auto replotLater = [this](bool &stale) {
        stale = true;
        m_plot->replot(QCustomPlot::rpQueuedReplot);
    };
    connect(&m_grid, &ChartGrid::dataChanged, this,
            [this, replotLater] { replotLater(m_dataStale); });
    connect(&m_grid, &ChartGrid::layoutChanged, this, [this, replotLater] {
        m_dataStale = true; // the row count may have changed
        replotLater(m_layoutStale);
    });
    connect(&m_grid, &ChartGrid::viewReset, this, [this, replotLater] {
        m_shownArea = {};
        replotLater(m_layoutStale);
    });
    connect(m_plot, &QCustomPlot::beforeReplot, this, &ChartView::followGrid);
    connect(m_plot, &QCustomPlot::afterLayout, this, &ChartView::tellPeer);
}

void ChartView::connectMouse()
{
    for (const QCPAxis *axis : {m_plot->xAxis, m_plot->yAxis})
        connect(axis, qOverload<const QCPRange &>(&QCPAxis::rangeChanged), this,
                &ChartView::keepInSight);
    connect(m_plot, &QCustomPlot::mousePress, this,
            [this](QMouseEvent *event) { m_pressPosition = event->pos(); });
    connect(m_plot, &QCustomPlot::mouseRelease, this, [this](QMouseEvent *event) {
        const int way = (event->pos() - m_pressPosition).manhattanLength();
        if (event->button() == Qt::LeftButton && way < QApplication::startDragDistance())
            pick(event->pos());
    });
    connect(m_plot, &QCustomPlot::mouseDoubleClick, this, [this](QMouseEvent *event) {
        if (m_legend->contains(event->pos()))
            restoreLegend();
        else
            restoreLayout();
    });
}

void ChartView::followGrid()
{
    if (m_dataStale)
        copyData();
    if (m_layoutStale)
        copyLayout();
    if (m_peer)
        m_legend->setColumnWidth(
            std::max(m_legend->dockedWidth(), m_peer->m_legend->dockedWidth()));
    m_dataStale = false;
    m_layoutStale = false;
}

void ChartView::alignWith(ChartView &other)
{
    auto *edges = new QCPMarginGroup(m_plot);
    for (ChartView *view : {this, &other})
        view->m_plot->axisRect()->setMarginGroup(QCP::msLeft | QCP::msRight, edges);
    m_peer = &other;
    other.m_peer = this;
}

/// Both plots take the margins of the longer numbers and the wider legend.
void ChartView::tellPeer()
{
    const std::pair edges(m_plot->axisRect()->left(), m_plot->axisRect()->right());
    if (m_peer && std::exchange(m_edges, edges) != edges)
        m_peer->m_plot->replot(QCustomPlot::rpQueuedReplot);
}

void ChartView::copyData()
{
    for (int series = 0; series < m_grid.columnCount(); ++series) {
        const QVector<QCPGraphData> points = pointsOf(m_grid.columnData(series + 1));
        m_plot->graph(series)->data()->set(points, true);
    }
}

void ChartView::copyLayout()
{
    const PlotScale scale(size(), m_grid.columnCount(), QFontInfo(font()).pixelSize());
    applyScale(*m_plot, scale);
    const QFontMetrics metrics(m_plot->legend->font());
    const bool dense = m_grid.rowCount() > width();
    // Drawing a wide smooth line as one path takes fifteen times as long as piece by piece.
    m_plot->setPlottingHint(QCP::phFastPolylines, !dense);
    for (int series = 0; series < m_grid.columnCount(); ++series) {
        QCPGraph &graph = *m_plot->graph(series);
        graph.setName(
            metrics.elidedText(m_grid.columnLabelOf(series + 1), Qt::ElideRight, scale.legendText));
        graph.setPen(columnPen(m_grid, series + 1, dense));
        graph.setAntialiased(graph.pen().style() == Qt::SolidLine);
    }
    m_plot->xAxis->setTickLabels(m_grid.rowLabelsShown());
    const bool white = m_grid.backdrop() == ChartGrid::Backdrop::White;
    applyBackdrop(*m_plot, white);
    m_legend->setBackground(white ? QColor(Qt::white) : windowColour(*this));
    followLimits();
}

/// New limits or rows reset the zoom; other changes keep it.
void ChartView::followLimits()
{
    const QCPRange rows = rowsInSight(m_grid.rowCount());
    QRectF area(rows.lower, m_grid.valueAxisMinimum(), rows.size(),
                m_grid.valueAxisMaximum() - m_grid.valueAxisMinimum());
    if (area.height() == 0) // an empty range is refused: the axis would keep its former limits
        area.adjust(0, -kRoomBesideOne, 0, kRoomBesideOne);
    m_valueTicker->setLimits({m_grid.valueAxisMinimum(), m_grid.valueAxisMaximum()});
    if (area == m_shownArea)
        return;
    m_shownArea = area;
    showAll();
}

void ChartView::showAll()
{
    const QSignalBlocker rowsBlocker(m_plot->xAxis);
    const QSignalBlocker valuesBlocker(m_plot->yAxis);
    m_plot->xAxis->setRange(m_shownArea.left(), m_shownArea.right());
    m_plot->yAxis->setRange(m_shownArea.top(), m_shownArea.bottom());
}

/// Dragging and zooming stop at the first and the last row and at the grid's limits.
void ChartView::keepInSight()
{
    m_plot->xAxis->setRange(
        m_plot->xAxis->range().bounded(m_shownArea.left(), m_shownArea.right()));
    m_plot->yAxis->setRange(
        m_plot->yAxis->range().bounded(m_shownArea.top(), m_shownArea.bottom()));
}

void ChartView::pick(QPoint position)
{
    const int tolerance = m_plot->selectionTolerance();
    const QRect area = m_plot->axisRect()->rect();
    if (m_legend->contains(position) ||
        !area.adjusted(-tolerance, -tolerance, tolerance, tolerance).contains(position))
        return;
    // The first and the last row lie on the border, where half of the clicks miss the plot area.
    const QPointF inside(std::clamp(position.x(), area.left(), area.right()),
                         std::clamp(position.y(), area.top(), area.bottom()));
    int nearestSeries = -1;
    int nearestRow = 0;
    double nearest = tolerance;
    for (int series = 0; series < m_plot->graphCount(); ++series) {
        QVariant details;
        const double distance = m_plot->graph(series)->selectTest(inside, false, &details);
        if (distance < 0 || distance >= nearest)
            continue;
        nearest = distance;
        nearestSeries = series;
        nearestRow = details.value<QCPDataSelection>().dataRange().begin();
    }
    if (nearestSeries >= 0)
        emit pointPicked(nearestSeries + 1, std::min(nearestRow + 1, m_grid.rowCount()));
}

QImage ChartView::image(const QColor &behind)
{
    followGrid();
    QImage picture(size(), QImage::Format_RGB32);
    picture.fill(behind);
    QCPPainter painter(&picture);
    m_plot->toPainter(&painter, width(), height());
    return picture;
}

void ChartView::restoreLegend()
{
    m_legend->restore();
    m_plot->replot(QCustomPlot::rpQueuedReplot);
}

void ChartView::restoreLayout()
{
    showAll();
    m_plot->replot(QCustomPlot::rpQueuedReplot);
}

void ChartView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_layoutStale = true;
    m_plot->setGeometry(rect());
}

void ChartView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LocaleChange || event->type() == QEvent::FontChange ||
        event->type() == QEvent::PaletteChange) {
        m_layoutStale = true;
        m_plot->replot(QCustomPlot::rpQueuedReplot);
    }
}
