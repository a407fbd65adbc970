#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

class ChartGrid;

/// The text of a picked point of a chart: series label, value, line break, moment. Makes the point
/// the chart's current one. Throws RuntimeError 9 for a point or a series that does not exist.
QString pointText(ChartGrid &chart, int series, int point, const QDateTime &moment,
                  const QLocale &locale);
