#include "app/settings/chart_settings.h"
#include "app/settings/texts.h"
#include "chart/chart_grid.h"

void scrie_limite_grafic(const Diagrama &record)
{
    record.chart->setValueAxisMaximum(record.limita_maxima);
    record.chart->setValueAxisMinimum(record.limita_minima);
    record.chart->resetView();
}

void deseneaza_alarme(const Diagrama &record)
{
    record.chart->fillColumn(record.chart->lowerAlarmColumn(), record.alarma_minim);
    record.chart->fillColumn(record.chart->upperAlarmColumn(), record.alarma_maxim);
}

void aplica_tab(const Diagrama &record, const QString &tab)
{
    if (tab == texts::settings::tabGraphLimits())
        scrie_limite_grafic(record);
    else if (tab == texts::settings::tabAlarms())
        deseneaza_alarme(record);
}
