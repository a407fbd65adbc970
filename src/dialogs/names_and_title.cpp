#include "dialogs/names_and_title.h"
#include "app/settings/keys.h"
#include "app/settings/settings.h"
#include "chart/chart_grid.h"

#include <algorithm>

void renameSensors(Station &station, Settings &settings, std::size_t diagram,
                   const QStringList &names)
{
    Diagrama &record = station.diagramAt(diagram);
    // The sensor table holds the second diagram's behind the first one's.
    const std::size_t firstEntry = diagram * channels::kPerDiagram;
    const auto count = static_cast<std::size_t>(names.size());
    if (firstEntry + count > station.sensors.size())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);

    QStringList nameKeys;
    for (int sensor = 1; sensor <= names.size(); ++sensor)
        nameKeys += keys::sensorName(record.name, sensor);
    settings.save(nameKeys, names);

    record.Nume = station.Valori; // a numeric name has got its point while it was written
    for (std::size_t i = 0; i < count; ++i) {
        const QString &name = record.Nume.at(static_cast<qsizetype>(i));
        station.sensors[firstEntry + i].name = name;
        record.chart->setColumn(static_cast<int>(i) + 1);
        record.chart->setColumnLabel(name);
    }
}

void retitleDiagram(Station &station, Settings &settings, std::size_t diagram, const QString &title)
{
    Diagrama &record = station.diagramAt(diagram);
    settings.save({keys::title(record.name)}, {title});
    record.Titlu = title;
}
