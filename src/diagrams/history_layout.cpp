#include "diagrams/history_layout.h"
#include "platform/numeric_text.h"
#include "platform/runtime_error.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

constexpr double kTwipsOf300Rows = 15300;
constexpr double kWidestChart = 66000;
constexpr double kScrollOrigin = 32767;
constexpr double kScrollSteps = 65534; // from -32767 to 32767
constexpr double kScrollBarGap = 30;

constexpr double kMargin = 120;
constexpr double kSmallestViewport = 900;

quint8 toUInt8(double number)
{
    const double rounded = std::nearbyint(number);
    if (!(rounded >= 0 && rounded <= std::numeric_limits<quint8>::max()))
        throw RuntimeError(RuntimeError::Overflow);
    return static_cast<quint8>(rounded);
}

HistoryPanel panelAt(double top, double height, const HistoryMeasures &measures)
{
    const double width = std::max(0.0, measures.inner.width - 2 * kMargin);
    HistoryPanel panel;
    panel.title = {kMargin, top, width, measures.textHeight};
    panel.viewport = {kMargin, top + measures.textHeight, width, height};
    panel.scrollBar = {kMargin, panel.viewport.top + height + kScrollBarGap, width,
                       measures.scrollBarHeight};
    return panel;
}

} // namespace

double historyChartWidth(int rowCount)
{
    return std::min(rowCount * kTwipsOf300Rows / kRowsOfWindowWidth, kWidestChart);
}

ScrollRange scrollRange(double innerLeft, double innerWidth, double viewportWidth, quint8 factor)
{
    ScrollRange range;
    range.minimum = toInt16(innerLeft - kScrollOrigin);
    range.maximum = range.minimum;
    range.factor = factor;
    const double overflow = innerWidth - viewportWidth;
    if (overflow <= 0)
        return range;
    if (overflow < kScrollSteps) {
        range.maximum = toInt16(overflow - kScrollOrigin);
    } else {
        range.maximum = toInt16(kScrollOrigin);
        range.factor = toUInt8(overflow / kScrollSteps);
    }
    return range;
}

double innerFrameLeft(int value, quint8 factor)
{
    return -((value + kScrollOrigin) * factor);
}

HistoryLayout historyLayout(const HistoryMeasures &measures)
{
    HistoryLayout layout;
    const double rowHeight =
        std::max({measures.prompt.height, measures.date.height, measures.button.height});
    const auto inFirstRow = [&](double left, TwipsSize size) {
        return TwipsRect{left, kMargin + (rowHeight - size.height) / 2, size.width, size.height};
    };
    layout.prompt = inFirstRow(kMargin, measures.prompt);
    layout.date = inFirstRow(layout.prompt.left + measures.prompt.width + kMargin, measures.date);
    layout.button = inFirstRow(layout.date.left + measures.date.width + kMargin, measures.button);

    const double statusLeft = layout.button.left + measures.button.width + 2 * kMargin;
    layout.status =
        inFirstRow(statusLeft, {std::max(0.0, measures.inner.width - kMargin - statusLeft),
                                measures.textHeight});

    const double selectionHeight = 2 * measures.textHeight;
    layout.selection = {kMargin, measures.inner.height - selectionHeight - kMargin / 2,
                        std::max(0.0, measures.inner.width - 2 * kMargin), selectionHeight};

    const double top = 2 * kMargin + rowHeight;
    const double panelHeight = (layout.selection.top - kMargin / 2 - top) / 2;
    const double viewport =
        std::max(kSmallestViewport, panelHeight - measures.textHeight - kScrollBarGap -
                                        measures.scrollBarHeight - kMargin / 2);
    layout.chart1 = panelAt(top, viewport, measures);
    layout.chart2 = panelAt(top + panelHeight, viewport, measures);
    return layout;
}
