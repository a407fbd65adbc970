#pragma once

#include "app/settings/channels.h"

#include <QString>
#include <QStringList>
#include <array>
#include <memory>
#include <vector>

class ChartGrid;
class Settings;
struct Diagrama;
struct Station;

/// The two history diagrams without their window: their charts, the limits of their value axes
/// (records Station::Istoric) and the archived day they show.
///
/// Like the live charts the grids live as long as the program, so that the limits dialog needs no
/// check of its own; the data of a day are held only while the window is open.
class HistoryDiagrams
{
public:
    /// Both must outlive this object.
    HistoryDiagrams(Station &station, Settings &settings);
    ~HistoryDiagrams();
    Q_DISABLE_COPY_MOVE(HistoryDiagrams)

    /// Chart 0 (sensors 1 to 3) or 1 (sensors 4 to 6). Throws RuntimeError 9 for any other.
    ChartGrid &chart(std::size_t index) const;

    /// Clears the charts and gives them the limits from the settings and the sensors' present
    /// names. Throws what Settings throws.
    void load();
    /// Frees the data of the day.
    void unload();

    /// Draws an archive, named without its folder; the list has at most one name. Returns an empty
    /// text, or number and description of the failure: the charts are then cleared.
    QString genereaza_diagrame(const QStringList &fisiere);

    /// Width of each chart for its rows, in twips; zeros when the first one has so few that both
    /// take the window's width.
    std::array<double, channels::kDiagrams> chartWidths() const;

    /// The text of a picked point: series label, value, and the moment of the sample.
    QString pointText(std::size_t chart, int series, int point) const;

private:
    void clear();
    void draw(const QString &path);
    void drawAlarms(Diagrama &history) const;

    Station &m_station;
    Settings &m_settings;
    std::array<std::unique_ptr<ChartGrid>, channels::kDiagrams> m_charts;
    std::vector<double> m_moments; ///< one per row of both charts, days since 1899-12-30
};
