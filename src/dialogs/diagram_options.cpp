#include "dialogs/diagram_options.h"
#include "app/settings/chart_settings.h"
#include "app/settings/number_entry.h"
#include "app/settings/schedule.h"
#include "app/settings/settings.h"
#include "app/settings/texts.h"
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

bool areScanOptionsValid(const OptionTexts &texts)
{
    return typedNumber(texts.Scan) && texts.MasuraTimp >= 0 &&
           std::all_of(texts.NumeMdb.cbegin(), texts.NumeMdb.cend(), nume_fisier_valid);
}

} // namespace

DiagramOptions::DiagramOptions(Station &station, Settings &settings, const Clock &clock,
                               std::size_t diagram, ShowError showError)
    : m_station(station), m_settings(settings), m_clock(clock), m_diagram(diagram),
      m_showError(std::move(showError))
{
}

Diagrama &DiagramOptions::record() const
{
    return m_station.diagramAt(m_diagram);
}

void DiagramOptions::afiseaza_tab(const QString &tab, OptionTexts &texts) const
{
    // A comma that was typed comes back as a point: the boxes keep to the settings file's form.
    if (tab == texts::settings::tabGraphLimits()) {
        texts.LimInf = fileNumberText(record().limita_minima);
        texts.LimSup = fileNumberText(record().limita_maxima);
    } else if (tab == texts::settings::tabAlarms()) {
        texts.AlarmInf = fileNumberText(record().alarma_minim);
        texts.AlarmSup = fileNumberText(record().alarma_maxim);
    } else if (tab == texts::settings::tabScanOptions()) {
        const Diagrama &first = m_station.diagramAt(0);
        texts.Scan = QString::number(first.interval_scanare);
        texts.MasuraTimp = first.masura_interval;
        texts.NumeMdb = m_station.NumeFisier;
    }
}

bool DiagramOptions::valideaza_tab(const QString &tab, OptionTexts &texts)
{
    if (tab == texts::settings::tabGraphLimits())
        return takeTab(
            tab, {{texts.LimInf, record().limita_minima}, {texts.LimSup, record().limita_maxima}});
    if (tab == texts::settings::tabAlarms())
        return takeTab(tab, {{texts.AlarmInf, record().alarma_minim},
                             {texts.AlarmSup, record().alarma_maxim}});
    return takeScanOptions(texts);
}

bool DiagramOptions::takeTab(const QString &tab, std::initializer_list<NumberEntry> entries)
{
    if (!takeNumbers(entries)) {
        m_showError(texts::settings::checkFields());
        return false;
    }
    aplica_tab(record(), tab);
    return true;
}

bool DiagramOptions::takeScanOptions(OptionTexts &texts)
{
    if (!areScanOptionsValid(texts)) {
        m_showError(texts::dialogs::checkScanOptions());
        return false;
    }
    if (numberFromText(texts.Scan) == 0)
        texts.Scan = QStringLiteral("1");
    const qint16 interval = wholeInterval(texts.Scan);
    for (const std::size_t diagram : {0u, 1u}) {
        m_station.diagramAt(diagram).interval_scanare = interval;
        m_station.diagramAt(diagram).masura_interval = static_cast<qint16>(texts.MasuraTimp);
    }
    calculeaza_urmatoarea_citire(m_station, m_clock.now());
    m_station.NumeFisier = texts.NumeMdb;
    adauga_extensie_mdb(m_station.NumeFisier);
    return true;
}

bool DiagramOptions::applyAll(OptionTexts &texts)
{
    const QStringList tabs{texts::settings::tabGraphLimits(), texts::settings::tabAlarms(),
                           texts::settings::tabScanOptions()};
    for (const QString &tab : tabs) {
        if (valideaza_tab(tab, texts))
            continue;
        for (const QString &each : tabs)
            afiseaza_tab(each, texts);
        return false;
    }
    return true;
}

void DiagramOptions::apply(const QString &tab, OptionTexts &texts)
{
    valideaza_tab(tab, texts);
    afiseaza_tab(tab, texts);
}

void DiagramOptions::saveDefaults(const QString &tab, OptionTexts &texts)
{
    apply(tab, texts);
    const int last = m_settings.chei_tab(record().name, tab, Settings::Mode::Scrie);
    m_settings.scrie_config(m_station.Chei, last);
}

void DiagramOptions::restoreDefaults(const QString &tab, OptionTexts &texts)
{
    const int last = m_settings.chei_tab(record().name, tab, Settings::Mode::Citeste);
    if (m_settings.citeste_config(m_station.Chei, last) <= last) {
        afiseaza_tab(tab, texts);
        return;
    }
    const QStringList &Valori = m_station.Valori;
    if (tab == texts::settings::tabGraphLimits()) {
        record().limita_minima = leadingNumber(Valori.at(0));
        record().limita_maxima = leadingNumber(Valori.at(1));
    } else if (tab == texts::settings::tabAlarms()) {
        record().alarma_minim = leadingNumber(Valori.at(0));
        record().alarma_maxim = leadingNumber(Valori.at(1));
    } else if (tab == texts::settings::tabScanOptions()) {
        takeSavedScanOptions();
    }
    aplica_tab(record(), tab);
    afiseaza_tab(tab, texts);
}

void DiagramOptions::takeSavedScanOptions()
{
    const QStringList &Valori = m_station.Valori;
    std::array<qint16, 4> numbers{}; // all converted before the first is stored
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = int16FromText(Valori.at(static_cast<qsizetype>(i)));
    for (const std::size_t diagram : {0u, 1u}) {
        m_station.diagramAt(diagram).interval_scanare = numbers[diagram];
        m_station.diagramAt(diagram).masura_interval = numbers[diagram + 2];
    }
    for (std::size_t i = 0; i < m_station.NumeFisier.size(); ++i)
        m_station.NumeFisier[i] = Valori.at(static_cast<qsizetype>(i) + 4);
}
