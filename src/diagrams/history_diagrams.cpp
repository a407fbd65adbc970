#include "diagrams/history_diagrams.h"
#include "app/settings/chart_settings.h"
#include "app/settings/station.h"
#include "chart/chart_grid.h"
#include "diagrams/history_layout.h"
#include "diagrams/history_limits.h"
#include "diagrams/live_diagrams.h"
#include "diagrams/point_text.h"
#include "platform/runtime_error.h"
#include "storage/archived_day.h"
#include "storage/failure.h"

#include <algorithm>

HistoryDiagrams::HistoryDiagrams(Station &station, Settings &settings)
    : m_station(station), m_settings(settings)
{
    LiveDiagrams::Charts charts = LiveDiagrams::stationCharts();
    for (std::size_t i = 0; i < m_charts.size(); ++i) {
        m_charts[i] = std::move(charts[i]);
        Diagrama &record = m_station.Istoric[i];
        record.chart = m_charts[i].get();
        record.name = m_charts[i]->tag();
        // Until the settings say otherwise.
        record.limita_minima = m_charts[i]->valueAxisMinimum();
        record.limita_maxima = m_charts[i]->valueAxisMaximum();
    }
}

HistoryDiagrams::~HistoryDiagrams()
{
    for (Diagrama &record : m_station.Istoric)
        record.chart = nullptr;
}

ChartGrid &HistoryDiagrams::chart(std::size_t index) const
{
    if (index >= m_charts.size())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    return *m_charts[index];
}

void HistoryDiagrams::load()
{
    clear();
    readHistoryLimits(m_station, m_settings);
    for (std::size_t i = 0; i < m_charts.size(); ++i) {
        const Diagrama &record = m_station.diagramAt(i);
        for (int j = 0; j < record.sensorCount; ++j) {
            m_charts[i]->setColumn(j + 1);
            m_charts[i]->setColumnLabel(record.Nume.at(j));
        }
    }
}

void HistoryDiagrams::unload()
{
    clear();
}

/// Resets the charts to their state before any day was drawn.
void HistoryDiagrams::clear()
{
    m_moments = {};
    for (std::size_t i = 0; i < m_charts.size(); ++i) {
        ChartGrid &chart = *m_charts[i];
        chart.setRowCount(kStationRows);
        chart.setRow(1);
        initializare_diagrama(chart, m_station, i);
        drawAlarms(m_station.Istoric[i]);
    }
}

QString HistoryDiagrams::genereaza_diagrame(const QStringList &fisiere)
{
    clear();
    const std::optional<Failure> failure = attempt([&] {
        for (const QString &file : fisiere)
            draw(m_station.archiveFolder() + file);
    });
    return failure ? failure->text() : QString();
}

void HistoryDiagrams::draw(const QString &path)
{
    ArchivedDay day = readArchive(path);
    if (day.size() == 0)
        return;
    m_moments = std::move(day.moments);
    auto readings = day.sensors.begin();
    for (Diagrama &history : m_station.Istoric) {
        history.chart->setRowCount(static_cast<int>(m_moments.size()));
        for (int column = 1; column <= channels::kPerDiagram; ++column)
            history.chart->setColumnData(column, std::move(*readings++));
        drawAlarms(history);
    }
}

/// The present alarm limits: those of the archived day are recorded nowhere.
void HistoryDiagrams::drawAlarms(Diagrama &history) const
{
    const auto live =
        std::find_if(m_station.Diagrame.begin(), m_station.Diagrame.end(),
                     [&](const Diagrama &record) { return record.name == history.name; });
    if (live == m_station.Diagrame.end())
        return;
    history.alarma_minim = live->alarma_minim;
    history.alarma_maxim = live->alarma_maxim;
    deseneaza_alarme(history);
}

std::array<double, channels::kDiagrams> HistoryDiagrams::chartWidths() const
{
    if (m_charts[0]->rowCount() <= kRowsOfWindowWidth)
        return {};
    return {historyChartWidth(m_charts[0]->rowCount()), historyChartWidth(m_charts[1]->rowCount())};
}

QString HistoryDiagrams::pointText(std::size_t chart, int series, int point) const
{
    const auto row = static_cast<std::size_t>(point) - 1;
    const double days = row < m_moments.size() ? m_moments[row] : 0;
    return ::pointText(this->chart(chart), series, point, momentFromDays(days), m_station.locale);
}
