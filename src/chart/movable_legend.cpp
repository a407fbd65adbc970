#include "chart/movable_legend.h"

#include <QApplication>
#include <qcustomplot.h>

MovableLegend::MovableLegend(QCustomPlot &plot)
    : QObject(&plot), m_plot(plot), m_column(new QCPLayoutGrid)
{
    plot.plotLayout()->addElement(0, 1, m_column);
    plot.plotLayout()->setColumnStretchFactor(1, 0.001);
    plot.plotLayout()->setColumnSpacing(0);
    // The filler below keeps the legend at the top of its column.
    m_column->addElement(1, 0, new QCPLayoutElement);
    m_column->setRowStretchFactor(0, 0.001);
    restore();

    connect(&plot, &QCustomPlot::mousePress, this, [this](QMouseEvent *event) { press(*event); });
    connect(&plot, &QCustomPlot::mouseMove, this, [this](QMouseEvent *event) { move(*event); });
    connect(&plot, &QCustomPlot::mouseRelease, this, &MovableLegend::release);
}

bool MovableLegend::contains(QPoint position) const
{
    return m_plot.legend->outerRect().contains(position);
}

int MovableLegend::dockedWidth() const
{
    return m_docked ? m_plot.legend->minimumOuterSizeHint().width() : 0;
}

void MovableLegend::setColumnWidth(int pixels)
{
    m_column->setMinimumSize(pixels, 0);
}

void MovableLegend::restore()
{
    if (m_docked)
        return;
    m_plot.axisRect()->insetLayout()->take(m_plot.legend);
    m_column->addElement(0, 0, m_plot.legend);
    m_plot.legend->setBrush(Qt::NoBrush);
    m_docked = true;
}

void MovableLegend::setBackground(QColor colour)
{
    colour.setAlpha(220);
    m_background = colour;
    if (!m_docked)
        m_plot.legend->setBrush(m_background);
}

void MovableLegend::press(const QMouseEvent &event)
{
    m_pressed = event.button() == Qt::LeftButton && contains(event.pos());
    if (!m_pressed)
        return;
    m_pressPosition = event.pos();
    m_grip = event.pos() - m_plot.legend->outerRect().topLeft();
    m_plot.axisRect()->setRangeDrag(Qt::Orientations());
}

void MovableLegend::move(const QMouseEvent &event)
{
    if (!m_pressed)
        return;
    const QPoint way = event.pos() - m_pressPosition;
    if (!m_dragging && way.manhattanLength() < QApplication::startDragDistance())
        return;
    m_dragging = true;
    if (m_docked)
        takeOut();
    place(event.pos() - m_grip);
    m_plot.replot(QCustomPlot::rpQueuedReplot);
}

void MovableLegend::release()
{
    if (m_pressed)
        m_plot.axisRect()->setRangeDrag(Qt::Horizontal | Qt::Vertical);
    m_pressed = false;
    m_dragging = false;
}

void MovableLegend::takeOut()
{
    m_column->take(m_plot.legend);
    m_plot.axisRect()->insetLayout()->addElement(m_plot.legend, QRectF());
    m_plot.legend->setBrush(m_background);
    m_docked = false;
}

/// The inset layout takes fractions of the plot area, so the legend keeps its place when the window
/// is resized; without a size of its own it is as large as its text needs.
void MovableLegend::place(QPoint topLeft)
{
    const QRect area = m_plot.axisRect()->rect();
    const QSize size = m_plot.legend->minimumOuterSizeHint();
    if (area.isEmpty())
        return;
    const int left =
        qBound(area.left(), topLeft.x(), qMax(area.left(), area.right() - size.width()));
    const int top =
        qBound(area.top(), topLeft.y(), qMax(area.top(), area.bottom() - size.height()));
    m_plot.axisRect()->insetLayout()->setInsetRect(
        0, QRectF(double(left - area.left()) / area.width(),
                  double(top - area.top()) / area.height(), 0, 0));
}
