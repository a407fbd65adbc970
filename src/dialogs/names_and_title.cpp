#include "dialogs/names_and_title.h"
#include "app/settings/keys.h"
#include "app/settings/settings.h"
#include "chart/chart_grid.h"

#include <algorithm>

void renameSensors(Station &station, const Settings &settings, std::size_t diagram,
                   const QStringList &names)
{
    Diagrama &record = station.diagramAt(diagram);
    const auto firstEntry =
        static_cast<std::size_t>(channels::channelOf(static_cast<int>(diagram), 1)) - 1;
    const auto count = static_cast<std::size_t>(names.size());
    if (firstEntry + count > station.sensors.size())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);

    QStringList nameKeys;
    for (int sensor = 1; sensor <= names.size(); ++sensor)
        nameKeys += keys::sensorName(record.name, sensor);
    record.Nume = settings.scrie_config(nameKeys, names); // a numeric name gets a decimal point
    for (std::size_t i = 0; i < count; ++i) {
        const QString &name = record.Nume.at(static_cast<qsizetype>(i));
        station.sensors[firstEntry + i].name = name;
        record.chart->setColumn(static_cast<int>(i) + 1);
        record.chart->setColumnLabel(name);
    }
}

void retitleDiagram(Station &station, const Settings &settings, std::size_t diagram,
                    const QString &title)
{
    Diagrama &record = station.diagramAt(diagram);
    settings.scrie_config({keys::title(record.name)}, {title});
    record.Titlu = title;
}
