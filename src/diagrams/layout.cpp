#include "diagrams/layout.h"

#include <algorithm>

namespace
{

TwipsRect centred(TwipsSize size, double innerWidth, double top)
{
    return {(innerWidth - size.width) / 2, top, size.width, size.height};
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
    const double inner = measures.innerWidth;

    DiagramsLayout layout;
    layout.chart1 = {0, titleRoom(mainInner), width, height};
    layout.label1 = centred(measures.label1, inner, layout.chart1.top - measures.label1.height);
    layout.chart2 = {0, mainInner.height / 2, width, height};
    layout.label2 = centred(measures.label2, inner, layout.chart2.top - measures.label2.height);
    layout.button = centred(measures.button, inner, layout.chart1.top + height + 150);
    layout.dateLabel1Top = layout.chart1.top + height + 10;
    layout.dateLabel2Top = layout.chart2.top + height;
    return layout;
}
