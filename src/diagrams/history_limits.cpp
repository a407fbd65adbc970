#include "diagrams/history_limits.h"
#include "app/settings/chart_settings.h"
#include "app/settings/number_entry.h"
#include "app/settings/settings.h"
#include "app/settings/texts.h"
#include "platform/numeric_text.h"

#include <array>

namespace
{

QStringList limitKeys()
{
    return {QStringLiteral("Istoric.Diagrama1.limita_minima ="),
            QStringLiteral("Istoric.Diagrama1.limita_maxima ="),
            QStringLiteral("Istoric.Diagrama2.limita_minima ="),
            QStringLiteral("Istoric.Diagrama2.limita_maxima =")};
}

void applyLimits(const Station &station)
{
    for (const Diagrama &record : station.Istoric)
        scrie_limite_grafic(record);
}

} // namespace

void readHistoryLimits(Station &station, Settings &settings)
{
    auto &[first, second] = station.Istoric;
    const std::array limits{&first.limita_minima, &first.limita_maxima, // in the order of the keys
                            &second.limita_minima, &second.limita_maxima};
    station.Chei = limitKeys();
    station.Valori = QStringList(station.Chei.size());
    const int read = settings.citeste_config(station.Chei, static_cast<int>(limits.size()) - 1);
    for (int i = 0; i < read; ++i)
        *limits[static_cast<std::size_t>(i)] = leadingNumber(station.Valori.at(i));
    applyLimits(station);
}

HistoryLimits::HistoryLimits(Station &station, Settings &settings, ShowError showError)
    : m_station(station), m_settings(settings), m_showError(std::move(showError))
{
}

HistoryLimitTexts HistoryLimits::texts() const
{
    const auto &[first, second] = m_station.Istoric;
    return {fileNumberText(first.limita_minima), fileNumberText(first.limita_maxima),
            fileNumberText(second.limita_minima), fileNumberText(second.limita_maxima)};
}

bool HistoryLimits::valideaza_tab(HistoryLimitTexts &texts)
{
    auto &[first, second] = m_station.Istoric;
    if (!takeNumbers({{texts.LimInfTemp, first.limita_minima},
                      {texts.LimSupTemp, first.limita_maxima},
                      {texts.LimInfPres, second.limita_minima},
                      {texts.LimSupPres, second.limita_maxima}})) {
        m_showError(texts::settings::checkFields());
        return false;
    }
    applyLimits(m_station);
    texts = this->texts();
    return true;
}

void HistoryLimits::save() const
{
    const auto &[first, second] = m_station.Istoric;
    m_settings.save(limitKeys(),
                    {fileNumberText(first.limita_minima), fileNumberText(first.limita_maxima),
                     fileNumberText(second.limita_minima), fileNumberText(second.limita_maxima)});
}

void HistoryLimits::restore()
{
    readHistoryLimits(m_station, m_settings);
}
