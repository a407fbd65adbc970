#pragma once

#include <qcustomplot.h>

class ChartGrid;

/// The style of charts: colours, line widths, fonts and ticks that suit a chart's size.

/// Pen of one column's line. Readings take the colours of Okabe and Ito, which operators with any
/// colour vision tell apart; alarm limits are thin, dashed and vermilion. `dense`: more points than
/// the chart has pixels, where a wide line would only blur.
QPen columnPen(const ChartGrid &grid, int column, bool dense);

/// Sizes that follow from a chart's height and width, from its number of series, which the legend
/// lists, and from the system's letters, all in pixels.
struct PlotScale {
    PlotScale(QSize chart, int series, int systemFontPixels);

    int fontPixels;
    int rowTicks;   ///< most labels that fit along the row axis
    int valueTicks; ///< labels wanted along the value axis
    int legendText; ///< widest series name, longer ones are shortened
    QSize legendIcon;
};

/// Fonts, margins and tick counts of all parts of the plot.
void applyScale(QCustomPlot &plot, const PlotScale &scale);

/// Colours and lines that never change.
void applyStyle(QCustomPlot &plot);

/// The background of an active window: a chart behind a locked dialog keeps its colours.
QColor windowColour(const QWidget &widget);

/// What lies around the plot area, white or the window's own colour, and letters to be read on it.
void applyBackdrop(QCustomPlot &plot, bool white);

/// Ticks of the row axis: whole rows at 1, 2 or 5 times a power of ten, labelled "R10", "R20", ...
class RowTicker final : public QCPAxisTicker
{
protected:
    double getTickStep(const QCPRange &range) override;
    int getSubTickCount(double tickStep) override;
    QString getTickLabel(double tick, const QLocale &locale, QChar formatChar,
                         int precision) override;
};

/// Ticks of the value axis: the usual round steps, if possible one that has a tick at both limits,
/// and always the limits themselves as far as they are in sight.
class ValueTicker final : public QCPAxisTicker
{
public:
    void setLimits(const QCPRange &limits);

protected:
    double getTickStep(const QCPRange &range) override;
    QVector<double> createTickVector(double tickStep, const QCPRange &range) override;

private:
    QCPRange m_limits;
};
