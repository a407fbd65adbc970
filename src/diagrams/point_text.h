#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

class ChartGrid;

/// What a picked point of a chart says: series label, value, line break, moment. Makes the point
/// the chart's current one. Throws RuntimeError 9 for a point or a series that is not there.
QString pointText(ChartGrid &chart, int series, int point, const QDateTime &moment,
                  const QLocale &locale);
