#pragma once

#include "app/settings/diagram.h"
#include "app/settings/option_tab.h"

/// What a diagram's settings do to its chart. All need record.chart.

/// Value axis: maximum first, then minimum.
void scrie_limite_grafic(const Diagrama &record);

/// Draws the lower and the upper alarm limit: two horizontal lines.
void deseneaza_alarme(const Diagrama &record);

/// Pushes the settings of one options tab to the chart; the scan options have nothing there.
void aplica_tab(const Diagrama &record, OptionTab tab);
