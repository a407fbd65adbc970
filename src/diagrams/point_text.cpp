#include "diagrams/point_text.h"
#include "chart/chart_grid.h"
#include "platform/locale_date_text.h"
#include "platform/numeric_text.h"

QString pointText(ChartGrid &chart, int series, int point, const QDateTime &moment,
                  const QLocale &locale)
{
    chart.setRow(point);
    chart.setColumn(series);
    return chart.columnLabel() + QStringLiteral(" = ") + numberText(chart.data(), locale) +
           QStringLiteral("\r\n") + dateTimeText(moment, locale);
}
