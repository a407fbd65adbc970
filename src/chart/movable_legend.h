#pragma once

#include <QColor>
#include <QObject>
#include <QPoint>

class QCPLayoutGrid;
class QCustomPlot;
class QMouseEvent;

/// The legend of a plot, docked at the right of the plot area until the operator drags it over the
/// plot. While it is dragged the plot area does not move.
class MovableLegend : public QObject
{
    Q_OBJECT
public:
    /// Belongs to `plot` and places its legend.
    explicit MovableLegend(QCustomPlot &plot);

    bool contains(QPoint position) const;
    /// The width that it takes at the right of the plot area, in pixels; 0 while it floats.
    int dockedWidth() const;
    /// Reserves that width at the right at least.
    void setColumnWidth(int pixels);
    /// Back to the right of the plot area.
    void restore();
    /// The colour behind its text while it floats; the plot's lines stay faintly visible.
    void setBackground(QColor colour);

private:
    void press(const QMouseEvent &event);
    void move(const QMouseEvent &event);
    void release();
    void takeOut();
    void place(QPoint topLeft);

    QCustomPlot &m_plot;
    QCPLayoutGrid *m_column; ///< the legend's place at the right, empty while it floats
    bool m_docked = false;
    bool m_pressed = false;
    bool m_dragging = false;
    QPoint m_pressPosition;
    QColor m_background = Qt::white;
    QPoint m_grip; ///< from the legend's top left corner to the mouse
};
