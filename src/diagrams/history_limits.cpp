#include "diagrams/history_limits.h"
#include "app/settings/chart_settings.h"
#include "app/settings/keys.h"
#include "app/settings/settings.h"
#include "app/texts.h"
#include "platform/numeric_text.h"

#include <array>

namespace
{

/// One limit: its key in the settings file, its value in memory, its box in the dialog.
struct Limit {
    QString key;
    double &value;
    QString HistoryLimitBoxes::*box;
};

std::array<Limit, 4> limitsOf(Station &station)
{
    auto &[first, second] = station.Istoric;
    const QString firstName = keys::historyOf(channels::diagramName(0));
    const QString secondName = keys::historyOf(channels::diagramName(1));
    using Boxes = HistoryLimitBoxes;
    return {{{keys::lowerLimit(firstName), first.limita_minima, &Boxes::LimInfTemp},
             {keys::upperLimit(firstName), first.limita_maxima, &Boxes::LimSupTemp},
             {keys::lowerLimit(secondName), second.limita_minima, &Boxes::LimInfPres},
             {keys::upperLimit(secondName), second.limita_maxima, &Boxes::LimSupPres}}};
}

QStringList keysOf(const std::array<Limit, 4> &limits)
{
    QStringList limitKeys;
    for (const Limit &limit : limits)
        limitKeys += limit.key;
    return limitKeys;
}

void applyLimits(const Station &station)
{
    for (const Diagrama &record : station.Istoric)
        scrie_limite_grafic(record);
}

} // namespace

void readHistoryLimits(Station &station, const Settings &settings)
{
    const std::array<Limit, 4> limits = limitsOf(station);
    const QStringList values = settings.citeste_config(keysOf(limits));
    for (qsizetype i = 0; i < values.size(); ++i)
        limits[static_cast<std::size_t>(i)].value = leadingNumber(values.at(i));
    applyLimits(station);
}

HistoryLimits::HistoryLimits(Station &station, const Settings &settings, ShowError showError)
    : m_station(station), m_settings(settings), m_showError(std::move(showError))
{
}

HistoryLimitBoxes HistoryLimits::boxes() const
{
    HistoryLimitBoxes boxes;
    for (const Limit &limit : limitsOf(m_station))
        boxes.*limit.box = fileNumberText(limit.value);
    return boxes;
}

bool HistoryLimits::valideaza_tab(HistoryLimitBoxes &boxes)
{
    std::vector<NumberEntry> entries;
    for (const Limit &limit : limitsOf(m_station))
        entries.push_back({boxes.*limit.box, limit.value});
    if (!takeNumbers(entries)) {
        m_showError(texts::app::checkFields());
        return false;
    }
    applyLimits(m_station);
    boxes = this->boxes();
    return true;
}

void HistoryLimits::save() const
{
    const std::array<Limit, 4> limits = limitsOf(m_station);
    QStringList values;
    for (const Limit &limit : limits)
        values += fileNumberText(limit.value);
    m_settings.scrie_config(keysOf(limits), values);
}

void HistoryLimits::restore()
{
    readHistoryLimits(m_station, m_settings);
}
