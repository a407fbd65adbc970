#pragma once

#include "app/settings/diagram.h"

/// What a diagram's settings do to its chart. All need record.chart.

/// Value axis: maximum first, then minimum.
void scrie_limite_grafic(const Diagrama &record);

/// Draws the lower and the upper alarm limit: two horizontal lines.
void deseneaza_alarme(const Diagrama &record);

/// Pushes the settings of one options tab to the chart; any caption but the graph limits' and the
/// alarms' does nothing.
void aplica_tab(const Diagrama &record, const QString &tab);
