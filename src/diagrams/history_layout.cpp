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

/// Places parts side by side, and in a new row below what the window is too narrow for.
class HeadRows
{
public:
    HeadRows(double width, double rowHeight) : m_right(width - kMargin), m_rowHeight(rowHeight) {}

    TwipsRect place(TwipsSize part, double gap)
    {
        double left = m_left + gap;
        if (m_left > 0 && left + part.width > m_right) {
            left = kMargin;
            m_top += m_rowHeight + kMargin / 2;
        }
        m_left = left + part.width;
        return {left, m_top + (m_rowHeight - part.height) / 2, part.width, part.height};
    }
    double right() const { return m_right; }
    double bottom() const { return m_top + m_rowHeight; }

private:
    double m_right;
    double m_rowHeight;
    double m_left = 0; ///< where the last part ends
    double m_top = kMargin;
};

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
    HeadRows head(measures.inner.width,
                  std::max({measures.prompt.height, measures.date.height, measures.button.height}));
    layout.prompt = head.place(measures.prompt, kMargin);
    layout.date = head.place(measures.date, kMargin);
    layout.button = head.place(measures.button, kMargin);
    layout.status = head.place({measures.statusWidth, measures.textHeight}, 2 * kMargin);
    layout.status.width = std::max(0.0, head.right() - layout.status.left);

    const double selectionHeight = 2 * measures.textHeight;
    layout.selection = {kMargin, measures.inner.height - selectionHeight - kMargin / 2,
                        std::max(0.0, measures.inner.width - 2 * kMargin), selectionHeight};

    const double top = head.bottom() + kMargin;
    const double panelHeight = (layout.selection.top - kMargin / 2 - top) / 2;
    const double viewport =
        std::max(kSmallestViewport, panelHeight - measures.textHeight - kScrollBarGap -
                                        measures.scrollBarHeight - kMargin / 2);
    layout.chart1 = panelAt(top, viewport, measures);
    layout.chart2 = panelAt(top + panelHeight, viewport, measures);
    return layout;
}
