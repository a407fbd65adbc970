#include "diagrams/live_diagrams.h"
#include "app/settings/calibration.h"
#include "app/settings/chart_settings.h"
#include "app/settings/keys.h"
#include "app/settings/schedule.h"
#include "app/settings/settings.h"
#include "chart/chart_grid.h"
#include "diagrams/point_text.h"
#include "diagrams/texts.h"
#include "platform/numeric_text.h"
#include "platform/runtime_error.h"

#include <algorithm>
#include <limits>

namespace
{

std::unique_ptr<ChartGrid> stationChart(int diagram)
{
    QStringList labels;
    for (int channel = 1; channel <= channels::kPerDiagram; ++channel)
        labels += texts::diagrams::designedSeries(channels::channelOf(diagram, channel));
    labels << texts::diagrams::alarmSeries() << texts::diagrams::alarmSeries();
    return std::make_unique<ChartGrid>(channels::diagramName(diagram), labels, kStationRows);
}

/// The counters of both tables have 8 bits.
quint8 toUInt8(std::size_t number)
{
    if (number > std::numeric_limits<quint8>::max())
        throw RuntimeError(RuntimeError::Overflow);
    return static_cast<quint8>(number);
}

/// The entry of `table` that `isSame` accepts, or an empty one.
template <typename Entry, typename Predicate>
Entry previousEntry(const std::vector<Entry> &table, Predicate isSame)
{
    const auto found = std::find_if(table.begin(), table.end(), isSame);
    return found == table.end() ? Entry() : *found;
}

} // namespace

void initializare_diagrama(ChartGrid &chart, const Station &station, std::size_t diagram)
{
    if (diagram >= station.Diagrame.size())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    for (int column = 1; column <= chart.sensorColumns(); ++column)
        chart.fillColumn(column, station.Diagrame[diagram].limita_minima);
    chart.setRowLabelsShown(true);
    chart.setBackdrop(ChartGrid::Backdrop::Transparent);
    chart.resetView();
}

LiveDiagrams::Charts LiveDiagrams::stationCharts()
{
    Charts charts;
    for (int diagram = 0; diagram < channels::kDiagrams; ++diagram)
        charts.push_back(stationChart(diagram));
    return charts;
}

LiveDiagrams::LiveDiagrams(Station &station, Settings &settings, const Clock &clock)
    : m_station(station), m_settings(settings), m_clock(clock)
{
}

LiveDiagrams::~LiveDiagrams() = default;

ChartGrid &LiveDiagrams::chart(std::size_t control) const
{
    if (control >= m_charts.size())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    return *m_charts[control];
}

void LiveDiagrams::loadTables()
{
    m_station.currentRow = 1;
    // While a message of the settings is open a running cycle may take a sample: it works on the
    // old tables until the new ones are complete.
    std::vector<Diagrama> diagrams = cauta_diagrame();
    for (Diagrama &record : diagrams)
        m_settings.incarca_nume_senzori(record);
    std::vector<Sensor> sensors = incarca_lista_senzori(diagrams);
    m_station.Diagrame = std::move(diagrams);
    m_station.sensors = std::move(sensors);
    citeste_calibrari(m_station, m_settings);
}

void LiveDiagrams::loadSettings()
{
    for (std::size_t d = 0; d < m_station.Diagrame.size(); ++d) {
        Diagrama &record = m_station.Diagrame[d];
        m_settings.incarca_setari_diagrama(record);
        initializare_diagrama(*record.chart, m_station, d);
        deseneaza_alarme(record);
        scrie_limite_grafic(record);
    }
    calculeaza_urmatoarea_citire(m_station, m_clock.now());
}

std::vector<Diagrama> LiveDiagrams::cauta_diagrame() const
{
    std::vector<Diagrama> diagrams;
    for (const auto &chart : m_charts) {
        if (!chart->tag().contains(QLatin1String("Diagrama"), Qt::CaseInsensitive))
            continue;
        // When the window is opened again the old settings hold until they are read.
        Diagrama record = previousEntry(
            m_station.Diagrame, [&](const Diagrama &old) { return old.name == chart->tag(); });
        record.chart = chart.get();
        record.diagramNumber = toUInt8(diagrams.size());
        record.name = chart->tag();
        record.timeStamps.assign(static_cast<std::size_t>(chart->rowCount()) + 1, zeroDateTime());
        diagrams.push_back(std::move(record));
    }
    std::stable_sort(diagrams.begin(), diagrams.end(), [](const Diagrama &a, const Diagrama &b) {
        return a.name.compare(b.name, Qt::CaseInsensitive) < 0;
    });
    return diagrams;
}

std::vector<Sensor> LiveDiagrams::incarca_lista_senzori(std::vector<Diagrama> &diagrams) const
{
    std::vector<Sensor> sensors;
    for (std::size_t d = 0; d < diagrams.size(); ++d) {
        const Diagrama &record = diagrams[d];
        for (int column = 1; column <= record.chart->sensorColumns(); ++column) {
            if (column > record.Nume.size())
                throw RuntimeError(RuntimeError::SubscriptOutOfRange);
            const QString key = keys::sensor(record.name, column);
            Sensor entry =
                previousEntry(m_station.sensors, [&](const Sensor &old) { return old.key == key; });
            record.chart->setColumn(column);
            record.chart->setColumnLabel(record.Nume.at(column - 1));
            entry.key = key;
            entry.name = record.chart->columnLabel();
            entry.diagram = toUInt8(d);
            entry.channelCode = cod_senzor(key);
            entry.label = channels::storageColumn(toUInt8(sensors.size()) + 1);
            sensors.push_back(std::move(entry));
        }
    }
    return sensors;
}

void LiveDiagrams::adauga_citiri(const std::vector<Sensor> &sensors)
{
    for (Diagrama &record : m_station.Diagrame)
        adauga_punct(record, sensors);
    m_station.currentRow = toInt16(m_station.currentRow + 1.0);
}

void LiveDiagrams::adauga_punct(Diagrama &record, const std::vector<Sensor> &sensors)
{
    ChartGrid &chart = *record.chart;
    if (m_station.currentRow == toInt16(chart.rowCount()))
        goleste_diagramele();
    chart.setRow(m_station.currentRow);

    const QDateTime now = m_clock.now();
    const auto row = static_cast<std::size_t>(m_station.currentRow);
    if (row < record.timeStamps.size())
        record.timeStamps[row] = now.addMSecs(-now.time().msec());

    for (int column = 1; column <= chart.sensorColumns(); ++column) {
        chart.setColumn(column);
        const auto sensor = std::find_if(
            sensors.begin(), sensors.end(),
            [label = chart.columnLabel()](const Sensor &entry) { return entry.name == label; });
        if (sensor != sensors.end())
            chart.setData(sensor->value);
    }
}

void LiveDiagrams::goleste_diagramele()
{
    for (std::size_t d = 0; d < m_station.Diagrame.size(); ++d) {
        ChartGrid &chart = *m_station.Diagrame[d].chart;
        initializare_diagrama(chart, m_station, d);
        chart.setRow(1);
    }
    m_station.currentRow = 1;
}

QString LiveDiagrams::pointText(ChartGrid &chart, int series, int point) const
{
    const auto record =
        std::find_if(m_station.Diagrame.begin(), m_station.Diagrame.end(),
                     [&](const Diagrama &diagram) { return diagram.chart == &chart; });
    if (record == m_station.Diagrame.end() || point < 0 ||
        static_cast<std::size_t>(point) >= record->timeStamps.size())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    return ::pointText(chart, series, point, record->timeStamps[static_cast<std::size_t>(point)],
                       m_station.locale);
}
