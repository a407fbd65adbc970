#include "chart/plot_style.h"
#include "chart/chart_grid.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

constexpr QRgb kVermilion = 0xFFD55E00;
constexpr std::array<QRgb, 6> kReadingColours{
    0xFF0072B2, // blue
    0xFFE69F00, // orange
    0xFF009E73, // bluish green
    0xFFCC79A7, // reddish purple
    0xFF56B4E9, // sky blue
    0xFF000000, // black
};

constexpr QRgb kInkOnWhite = 0xFF303030;
constexpr QRgb kGridLine = 0xFFDADADA;
constexpr QRgb kFrame = 0xFF909090;

constexpr int kSmallestFont = 9;
constexpr int kLargestFont = 13;
constexpr double kLegendLine = 1.6;  // of a letter's height
constexpr int kUsualSystemFont = 13; // up to it the chart's size alone decides

/// How far a step that meets both limits may be from the wanted one.
constexpr double kStepTolerance = 1.7;

/// Values that differ by less than this part of what is shown are the same.
constexpr double kSameValue = 1e-9;

const std::array<QCPAxis::AxisType, 4> kSides{QCPAxis::atLeft, QCPAxis::atRight, QCPAxis::atTop,
                                              QCPAxis::atBottom};

/// Chart letters grow with the system font, as far as the legend still fits.
int fontPixelsFor(int chartHeight, int series, int systemFontPixels)
{
    const int pixels = std::clamp(7 + chartHeight / 50, kSmallestFont, kLargestFont);
    const int wanted = pixels * std::max(systemFontPixels, kUsualSystemFont) / kUsualSystemFont;
    const int largest = static_cast<int>(chartHeight / (series * kLegendLine));
    return std::clamp(wanted, kSmallestFont, std::max(kSmallestFont, largest));
}

double magnitudeOf(double number)
{
    return std::pow(10.0, std::floor(std::log10(number)));
}

bool isMultiple(double number, double step)
{
    const double steps = number / step;
    return std::abs(steps - std::round(steps)) < 1e-6;
}

QColor windowInk(const QWidget &widget)
{
    return widget.palette().color(QPalette::Active, QPalette::WindowText);
}

} // namespace

QPen columnPen(const ChartGrid &grid, int column, bool dense)
{
    if (grid.isAlarmColumn(column)) {
        QPen pen(QColor::fromRgb(kVermilion), 1);
        pen.setDashPattern({6, 4});
        return pen;
    }
    QPen pen(QColor::fromRgb(kReadingColours[std::size_t(column - 1) % kReadingColours.size()]),
             dense ? 1.0 : 2.0);
    pen.setCapStyle(Qt::RoundCap);
    return pen;
}

PlotScale::PlotScale(QSize chart, int series, int systemFontPixels)
    : fontPixels(fontPixelsFor(chart.height(), series, systemFontPixels)),
      rowTicks(std::max(2, chart.width() / (8 * fontPixels))),
      valueTicks(std::clamp(chart.height() / (3 * fontPixels), 2, 8)),
      legendText(std::max(4 * fontPixels, chart.width() / 6)),
      legendIcon(2 * fontPixels, fontPixels - 1)
{
}

void applyScale(QCustomPlot &plot, const PlotScale &scale)
{
    QFont font = plot.font();
    font.setPixelSize(scale.fontPixels);
    const int pad = scale.fontPixels / 2;

    QCPAxisRect &rect = *plot.axisRect();
    for (QCPAxis *axis : rect.axes())
        axis->setTickLabelFont(font);
    plot.xAxis->ticker()->setTickCount(scale.rowTicks);
    plot.yAxis->ticker()->setTickCount(scale.valueTicks);
    // The same left margin for all usual limits aligns charts that stand one above the other.
    // At the right the last row's label reaches beyond the plot by half of its width.
    const int lastLabel = QFontMetrics(font).horizontalAdvance(QStringLiteral("R00")) / 2;
    rect.setMinimumMargins(QMargins(4 * scale.fontPixels, scale.fontPixels, lastLabel, 0));

    QCPLegend &legend = *plot.legend;
    legend.setFont(font);
    for (int i = 0; i < legend.itemCount(); ++i)
        legend.item(i)->setFont(font);
    legend.setIconSize(scale.legendIcon);
    legend.setIconTextPadding(pad);
    legend.setRowSpacing(std::max(0, pad - 3));
    legend.setMargins(QMargins(pad, pad / 2, pad, pad / 2));
}

void applyStyle(QCustomPlot &plot)
{
    const QPen frame(QColor::fromRgb(kFrame), 1);
    QCPAxisRect &rect = *plot.axisRect();
    rect.setupFullAxesBox();
    rect.setBackground(QBrush(Qt::white));
    for (const QCPAxis::AxisType side : kSides) {
        QCPAxis &axis = *rect.axis(side);
        axis.setBasePen(frame);
        axis.setTickPen(frame);
        axis.setSubTickPen(frame);
        axis.setTicks(side == QCPAxis::atLeft || side == QCPAxis::atBottom);
        axis.setSubTicks(side == QCPAxis::atBottom);
        axis.setTickLength(0, 4);
        axis.setSubTickLength(0, 2);
        axis.grid()->setPen(QPen(QColor::fromRgb(kGridLine), 1));
        axis.grid()->setZeroLinePen(Qt::NoPen);
    }
    plot.xAxis->setTicker(QSharedPointer<RowTicker>::create());
    plot.yAxis->setNumberFormat(QStringLiteral("g"));
    plot.legend->setBorderPen(Qt::NoPen);
    plot.legend->setVisible(true);
}

QColor windowColour(const QWidget &widget)
{
    return widget.palette().color(QPalette::Active, QPalette::Window);
}

void applyBackdrop(QCustomPlot &plot, bool white)
{
    const QColor ink = white ? QColor::fromRgb(kInkOnWhite) : windowInk(plot);
    plot.setBackground(white ? QBrush(Qt::white) : QBrush(Qt::NoBrush));
    for (QCPAxis *axis : plot.axisRect()->axes())
        axis->setTickLabelColor(ink);
    plot.legend->setTextColor(ink);
}

double RowTicker::getTickStep(const QCPRange &range)
{
    const double wanted = range.size() / tickCount();
    const double magnitude = magnitudeOf(std::max(wanted, 1.0));
    for (const double mantissa : {1.0, 2.0, 5.0})
        if (mantissa * magnitude >= wanted)
            return mantissa * magnitude;
    return 10 * magnitude;
}

int RowTicker::getSubTickCount(double tickStep)
{
    if (tickStep < 2)
        return 0;
    const int mantissa = static_cast<int>(cleanMantissa(tickStep));
    return mantissa == 2 ? 1 : 4;
}

QString RowTicker::getTickLabel(double tick, const QLocale &, QChar, int)
{
    return ChartGrid::rowLabel(static_cast<int>(std::lround(tick)));
}

void ValueTicker::setLimits(const QCPRange &limits)
{
    m_limits = limits;
}

QVector<double> ValueTicker::createTickVector(double tickStep, const QCPRange &range)
{
    QVector<double> ticks = QCPAxisTicker::createTickVector(tickStep, range);
    const double slack = range.size() * kSameValue;
    for (const double limit : {m_limits.lower, m_limits.upper}) {
        if (limit < range.lower - slack || limit > range.upper + slack)
            continue;
        // Its number would touch those of its neighbours.
        ticks.removeIf([&](double tick) { return std::abs(tick - limit) <= tickStep / 2; });
        ticks.append(limit);
    }
    std::sort(ticks.begin(), ticks.end());
    return ticks;
}

double ValueTicker::getTickStep(const QCPRange &range)
{
    const double wanted = range.size() / tickCount();
    double best = QCPAxisTicker::getTickStep(range);
    double bestRatio = kStepTolerance;
    for (const double mantissa : {1.0, 2.0, 2.5, 5.0, 10.0}) {
        const double step = mantissa * magnitudeOf(wanted);
        const double ratio = std::max(step / wanted, wanted / step);
        if (ratio < bestRatio && isMultiple(range.lower, step) && isMultiple(range.upper, step)) {
            best = step;
            bestRatio = ratio;
        }
    }
    return best;
}
