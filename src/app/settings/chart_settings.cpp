#include "app/settings/chart_settings.h"
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

void aplica_tab(const Diagrama &record, OptionTab tab)
{
    switch (tab) {
    case OptionTab::GraphLimits:
        return scrie_limite_grafic(record);
    case OptionTab::Alarms:
        return deseneaza_alarme(record);
    case OptionTab::ScanOptions:
        return;
    }
}
