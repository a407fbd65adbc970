#pragma once

#include <QPointer>
#include <QSharedPointer>
#include <QWidget>
#include <utility>

class ChartGrid;
class MovableLegend;
class QCustomPlot;
class ValueTicker;

/// Draws a ChartGrid: a line per column, the legend at the right, row labels below, the value axis
/// with the grid's limits. Changes of the grid are merged into one repaint.
///
/// The mouse wheel zooms; the left button drags the plot or the legend. Neither leads beyond the
/// rows and the grid's limits. A double-click on the legend returns it to the right, one on the
/// plot shows all rows and the grid's limits again. Keys and the right mouse button are left to the
/// parent.
class ChartView : public QWidget
{
    Q_OBJECT
public:
    /// The grid must outlive the view and never change its column count.
    explicit ChartView(ChartGrid &grid, QWidget *parent = nullptr);

    ChartGrid &grid() const { return m_grid; }

    /// The chart as it is now, in its own size; a transparent backdrop shows `behind`.
    QImage image(const QColor &behind);

    /// The plots of both views, which stand one above the other, share left and right edges.
    void alignWith(ChartView &other);

signals:
    /// A left click near a line: the series and its nearest point, both from 1.
    void pointPicked(int series, int point);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void createSeries();
    void connectGrid();
    void connectMouse();
    void followGrid();
    void copyData();
    void copyLayout();
    void followLimits();
    void showAll();
    void restoreLegend();
    void restoreLayout();
    void keepInSight();
    void tellPeer();
    void pick(QPoint position);

    ChartGrid &m_grid;
    QCustomPlot *m_plot;
    MovableLegend *m_legend;
    QSharedPointer<ValueTicker> m_valueTicker;
    QPointer<ChartView> m_peer;  ///< the view whose edges this one shares
    std::pair<int, int> m_edges; ///< of the plot as it was last laid out
    bool m_dataStale = true;
    bool m_layoutStale = true;
    QRectF m_shownArea; ///< all rows between the grid's limits
    QPoint m_pressPosition;
};
