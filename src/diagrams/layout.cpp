#include "diagrams/layout.h"

#include <algorithm>

namespace
{

constexpr double kGap = 15; // a pixel: two roundings may differ by one

TwipsRect centred(TwipsSize size, double innerWidth, double top)
{
    return {(innerWidth - size.width) / 2, top, size.width, size.height};
}

/// A title above the form's upper edge moves down, its chart's upper edge with it.
void moveBelowTop(TwipsRect &title, TwipsRect &chart)
{
    const double beyond = std::max(0.0, -title.top);
    title.top += beyond;
    chart.top += beyond;
    chart.height -= beyond;
}

void endAbove(TwipsRect &chart, double bottom)
{
    chart.height = std::clamp(bottom - chart.top, 0.0, chart.height);
}

void keepInside(DiagramsLayout &layout, const DiagramsMeasures &measures)
{
    for (TwipsRect *chart : {&layout.chart1, &layout.chart2})
        chart->width = std::min(chart->width, measures.inner.width);
    moveBelowTop(layout.label1, layout.chart1);
    moveBelowTop(layout.label2, layout.chart2);

    layout.dateLabel2Top =
        std::min(layout.dateLabel2Top, measures.inner.height - measures.pickedPoint2Height);
    endAbove(layout.chart2, layout.dateLabel2Top - (measures.pickedPoint2Height > 0 ? kGap : 0));

    layout.button.top =
        std::min(layout.button.top, layout.label2.top - layout.button.height - kGap);
    layout.dateLabel1Top =
        std::min(layout.dateLabel1Top, layout.chart2.top - measures.pickedPoint1Height - kGap);
    endAbove(layout.chart1, std::min(layout.button.top - kGap, layout.dateLabel1Top));
}

} // namespace

TwipsSize form1Size(TwipsSize mainInner)
{
    return {std::max(0.0, mainInner.width - 60), std::max(0.0, mainInner.height - 1060)};
}

double titleRoom(TwipsSize mainInner)
{
    return mainInner.height / 8 - 600;
}

DiagramsLayout diagramsLayout(TwipsSize mainInner, const DiagramsMeasures &measures)
{
    const double width = std::max(0.0, measures.outer.width - 100);
    const double height = measures.outer.height / 3;
    const double inner = measures.inner.width;

    DiagramsLayout layout;
    layout.chart1 = {0, titleRoom(mainInner), width, height};
    layout.label1 = centred(measures.label1, inner, layout.chart1.top - measures.label1.height);
    layout.chart2 = {0, mainInner.height / 2, width, height};
    layout.label2 = centred(measures.label2, inner, layout.chart2.top - measures.label2.height);
    layout.button = centred(measures.button, inner, layout.chart1.top + height + 150);
    layout.dateLabel1Top = layout.chart1.top + height + 10;
    layout.dateLabel2Top = layout.chart2.top + height;
    keepInside(layout, measures);
    return layout;
}
