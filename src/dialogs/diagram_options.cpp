#include "dialogs/diagram_options.h"
#include "app/settings/chart_settings.h"
#include "app/settings/schedule.h"
#include "app/settings/settings.h"
#include "app/texts.h"
#include "dialogs/texts.h"
#include "platform/numeric_text.h"
#include "storage/storage_names.h"

#include <algorithm>
#include <cmath>

namespace
{

/// The interval that a numeric text stands for, in units: the next lower whole number.
qint16 wholeInterval(const QString &text)
{
    return toInt16(std::floor(numberFromText(text)));
}

bool areScanOptionsValid(const OptionBoxes &boxes)
{
    return typedNumber(boxes.Scan) && boxes.MasuraTimp >= 0 &&
           std::all_of(boxes.NumeMdb.cbegin(), boxes.NumeMdb.cend(), nume_fisier_valid);
}

} // namespace

DiagramOptions::DiagramOptions(Station &station, const Settings &settings, const Clock &clock,
                               std::size_t diagram, ShowError showError)
    : m_station(station), m_settings(settings), m_clock(clock), m_diagram(diagram),
      m_showError(std::move(showError))
{
}

Diagrama &DiagramOptions::record() const
{
    return m_station.diagramAt(m_diagram);
}

std::vector<NumberEntry> DiagramOptions::limitEntries(OptionTab tab, OptionBoxes &boxes) const
{
    const bool isGraph = tab == OptionTab::GraphLimits;
    const std::vector<LimitSetting> limits = limitsOf(record(), tab);
    return {{isGraph ? boxes.LimInf : boxes.AlarmInf, limits.at(0).value},
            {isGraph ? boxes.LimSup : boxes.AlarmSup, limits.at(1).value}};
}

void DiagramOptions::afiseaza_tab(OptionTab tab, OptionBoxes &boxes) const
{
    if (tab == OptionTab::ScanOptions) {
        const Diagrama &first = m_station.diagramAt(0);
        boxes.Scan = QString::number(first.interval_scanare);
        boxes.MasuraTimp = first.masura_interval;
        boxes.NumeMdb = m_station.NumeFisier;
        return;
    }
    // A comma that was typed comes back as a point: the boxes keep to the settings file's form.
    for (const NumberEntry &entry : limitEntries(tab, boxes))
        entry.text = fileNumberText(entry.setting);
}

bool DiagramOptions::valideaza_tab(OptionTab tab, OptionBoxes &boxes)
{
    return tab == OptionTab::ScanOptions ? takeScanOptions(boxes) : takeLimits(tab, boxes);
}

bool DiagramOptions::takeLimits(OptionTab tab, OptionBoxes &boxes)
{
    if (!takeNumbers(limitEntries(tab, boxes))) {
        m_showError(texts::app::checkFields());
        return false;
    }
    aplica_tab(record(), tab);
    return true;
}

bool DiagramOptions::takeScanOptions(OptionBoxes &boxes)
{
    if (!areScanOptionsValid(boxes)) {
        m_showError(texts::dialogs::checkScanOptions());
        return false;
    }
    if (numberFromText(boxes.Scan) == 0)
        boxes.Scan = QStringLiteral("1");
    const qint16 interval = wholeInterval(boxes.Scan);
    for (std::size_t diagram = 0; diagram < channels::kDiagrams; ++diagram) {
        m_station.diagramAt(diagram).interval_scanare = interval;
        m_station.diagramAt(diagram).masura_interval = static_cast<qint16>(boxes.MasuraTimp);
    }
    calculeaza_urmatoarea_citire(m_station, m_clock.now());
    m_station.NumeFisier = boxes.NumeMdb;
    adauga_extensie_mdb(m_station.NumeFisier);
    return true;
}

bool DiagramOptions::applyAll(OptionBoxes &boxes)
{
    constexpr std::array kTabs{OptionTab::GraphLimits, OptionTab::Alarms, OptionTab::ScanOptions};
    for (const OptionTab tab : kTabs) {
        if (valideaza_tab(tab, boxes))
            continue;
        for (const OptionTab each : kTabs)
            afiseaza_tab(each, boxes);
        return false;
    }
    return true;
}

void DiagramOptions::apply(OptionTab tab, OptionBoxes &boxes)
{
    valideaza_tab(tab, boxes);
    afiseaza_tab(tab, boxes);
}

void DiagramOptions::saveDefaults(OptionTab tab, OptionBoxes &boxes)
{
    apply(tab, boxes);
    const SettingsEntries entries = m_settings.chei_tab(record(), tab);
    m_settings.scrie_config(entries.keys, entries.values);
}

void DiagramOptions::restoreDefaults(OptionTab tab, OptionBoxes &boxes)
{
    const QStringList keys = m_settings.chei_tab(record(), tab).keys;
    const QStringList values = m_settings.citeste_config(keys);
    if (values.size() == keys.size()) {
        takeSavedTab(tab, values);
        aplica_tab(record(), tab);
    }
    afiseaza_tab(tab, boxes);
}

void DiagramOptions::takeSavedTab(OptionTab tab, const QStringList &values)
{
    if (tab == OptionTab::ScanOptions)
        return takeSavedScanOptions(values);
    auto value = values.cbegin();
    for (const LimitSetting &limit : limitsOf(record(), tab))
        limit.value = leadingNumber(*value++);
}

void DiagramOptions::takeSavedScanOptions(const QStringList &values)
{
    // All are converted before one is stored.
    std::array<qint16, std::size_t{2} * channels::kDiagrams> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = int16FromText(values.at(static_cast<qsizetype>(i)));
    for (std::size_t diagram = 0; diagram < channels::kDiagrams; ++diagram) {
        m_station.diagramAt(diagram).interval_scanare = numbers[diagram];
        m_station.diagramAt(diagram).masura_interval = numbers[diagram + channels::kDiagrams];
    }
    std::copy(values.begin() + numbers.size(), values.end(), m_station.NumeFisier.begin());
}
