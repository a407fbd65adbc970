#pragma once

#include "app/settings/station.h"
#include "chart/chart_grid.h"

#include <memory>
#include <vector>

class Settings;

/// Rows of the station's charts.
inline constexpr int kStationRows = 60;

/// Sets every sensor point of a chart to the lower graph limit of one diagram, shows the row labels
/// and makes the backdrop transparent. The two alarm series stay. Throws RuntimeError 9 when there
/// is no such diagram.
void initializare_diagrama(ChartGrid &chart, const Station &station, std::size_t diagram);

/// The live diagrams without their window: the diagram and sensor tables, and the sweep that writes
/// one row per sample into all charts at once.
///
/// The charts' grids belong to this object, which lives as long as the program, and not to the
/// window that draws them: Diagrama::chart stays valid while the window is closed, so the cycle and
/// the dialogs need no check of their own.
class LiveDiagrams
{
public:
    using Charts = std::vector<std::unique_ptr<ChartGrid>>;

    /// The station's charts, one for each diagram: its channels, the alarm limits, kStationRows.
    static Charts stationCharts();

    /// Station, settings and clock must outlive this object.
    LiveDiagrams(Station &station, Settings &settings, const Clock &clock);
    ~LiveDiagrams();
    Q_DISABLE_COPY_MOVE(LiveDiagrams)

    /// A chart by its place in the control order, from 0. Throws RuntimeError 9 beyond the last.
    ChartGrid &chart(std::size_t control) const;

    /// First half of a load: returns to row 1 and builds two tables, the diagrams from the charts
    /// whose tag names a diagram, sorted by name, and the sensors from their series, with names and
    /// calibrations from the settings. Throws RuntimeError 6 when a table outgrows its 8-bit
    /// counter, 9 when a chart has more sensor series than a diagram has names, and what Settings
    /// throws.
    void loadTables();

    /// Second half: reads every diagram's settings, redraws its chart with them and sets the next
    /// sampling moment one interval from now. Throws what Settings and the schedule throw.
    void loadSettings();

    /// Writes one sample into every diagram and advances to the next row. Throws RuntimeError 6
    /// when the row outgrows 16 bits, 9 when a chart has no such row.
    void adauga_citiri(const std::vector<Sensor> &sensors);

    /// Sets every sensor point to the lower graph limit; the next sample goes to row 1. The rows
    /// keep their moments until they are written again.
    void goleste_diagramele();

    /// The text of a picked point of a live chart: series label, value, and the moment the row was
    /// written. Makes the point the chart's current one. Throws RuntimeError 9 for a point, a
    /// series or a chart that does not exist.
    QString pointText(ChartGrid &chart, int series, int point) const;

private:
    std::vector<Diagrama> cauta_diagrame() const;
    std::vector<Sensor> incarca_lista_senzori(std::vector<Diagrama> &diagrams) const;
    void adauga_punct(Diagrama &record, const std::vector<Sensor> &sensors);

    Station &m_station;
    Settings &m_settings;
    const Clock &m_clock;
    Charts m_charts = stationCharts();
};
