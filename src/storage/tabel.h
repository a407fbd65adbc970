#pragma once

#include "jet/table_design.h"
#include "jet/value.h"

#include <QDateTime>

/// The design of table Tabel and the names of its parts. Columns are found by these names, so that
/// a table designed differently in a database program works too. A channel without a column is not
/// stored; without one of the other columns a sample that has a value for it is refused (3265).
/// Drawing an archive needs every column but Id and Alarma.
namespace tabel
{

inline const jet::Text kName = u"Tabel";
/// The table that a repair builds to replace Tabel.
inline const jet::Text kScratchName = u"Tabel2";
inline const jet::Text kPrimaryIndex = u"IndexPrimar";

inline const jet::Text kId = u"Id";
inline const jet::Text kAlarma = u"Alarma";
inline const jet::Text kData = u"Data";
inline const jet::Text kOra = u"Ora";
/// Value of Alarma for a sample in alarm; otherwise the column is not assigned.
inline const jet::Text kYes = u"Yes";

/// Column of a channel, which counts from 1.
jet::Text sensorColumn(int channel);

/// Id long, Senzor1 to Senzor6 double, Alarma text, Data and Ora date/time; IndexPrimar on Id.
jet::TableDesign design();

/// The primary unique index on Id.
jet::IndexDesign primaryIndex();

/// A date without a time of day, and a time of day (whole seconds) without a date.
jet::DateTime dateValue(QDate date);
jet::DateTime timeValue(QTime time);
/// A date with its time of day, to the second.
jet::DateTime momentValue(const QDateTime &moment);

} // namespace tabel
