#include "diagrams/history_limits.h"
#include "app/settings/chart_settings.h"
#include "app/settings/number_entry.h"
#include "app/settings/settings.h"
#include "app/settings/texts.h"
#include "platform/numeric_text.h"

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
    station.Chei = limitKeys();
    station.Valori = QStringList(station.Chei.size());
    if (settings.citeste_config(station.Chei, static_cast<int>(station.Chei.size()) - 1)) {
        station.Istoric[0].limita_minima = leadingNumber(station.Valori.at(0));
        station.Istoric[0].limita_maxima = leadingNumber(station.Valori.at(1));
        station.Istoric[1].limita_minima = leadingNumber(station.Valori.at(2));
        station.Istoric[1].limita_maxima = leadingNumber(station.Valori.at(3));
    }
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
