#include "app/settings/settings.h"
#include "app/settings/config_text.h"
#include "app/settings/keys.h"
#include "app/texts.h"
#include "platform/durable_file.h"
#include "platform/numeric_text.h"
#include "platform/operator.h"
#include "platform/runtime_error.h"

#include <QFile>
#include <algorithm>

QByteArray Settings::readFile() const
{
    QFile file(m_station.configPath());
    if (!file.open(QIODevice::ReadOnly))
        throw fileError(file);
    QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw fileError(file);
    return content;
}

QStringList Settings::citeste_config(const QStringList &keys) const
{
    const QByteArray file = readFile();
    QStringList values;
    for (const QString &key : keys) {
        const std::optional<QString> value = valueOfKey(file, key);
        if (!value) {
            m_operator.tell(texts::app::configError(), Operator::Icon::Critical);
            break;
        }
        values += *value;
    }
    return values;
}

QStringList Settings::valuesOf(const QStringList &keys) const
{
    QStringList values = citeste_config(keys);
    values.resize(keys.size());
    return values;
}

QStringList Settings::scrie_config(const QStringList &keys, QStringList values) const
{
    const QByteArray file = readFile();
    QStringList lines;
    for (qsizetype i = 0; i < keys.size(); ++i) {
        QString &value = values[i];
        if (typedNumber(value))
            value.replace(QLatin1Char(','), QLatin1Char('.'));
        for (const char lineEnd : {'\r', '\n'}) // pasted along; they would end the line in the file
            value.replace(QLatin1Char(lineEnd), QLatin1Char(' '));
        lines += keys.at(i) + QLatin1Char(',') + value;
    }
    if (const std::optional<QByteArray> content = withKeysReplaced(file, keys, lines))
        replaceFile(m_station.configPath(), *content);
    else
        m_operator.tell(texts::app::configError(), Operator::Icon::Critical);
    return values;
}

std::optional<QString> Settings::optionalValue(const QString &key) const
{
    return valueOfKey(readFile(), key);
}

std::vector<LimitSetting> limitsOf(Diagrama &record, OptionTab tab)
{
    switch (tab) {
    case OptionTab::GraphLimits:
        return {{keys::lowerLimit(record.name), record.limita_minima},
                {keys::upperLimit(record.name), record.limita_maxima}};
    case OptionTab::Alarms:
        return {{keys::lowerAlarm(record.name), record.alarma_minim},
                {keys::upperAlarm(record.name), record.alarma_maxim}};
    case OptionTab::ScanOptions:
        break;
    }
    return {};
}

void Settings::incarca_setari_diagrama(Diagrama &record)
{
    std::vector<LimitSetting> limits = limitsOf(record, OptionTab::GraphLimits);
    for (const LimitSetting &alarm : limitsOf(record, OptionTab::Alarms))
        limits.push_back(alarm);
    QStringList settingKeys;
    for (const LimitSetting &limit : limits)
        settingKeys += limit.key;
    settingKeys << keys::scanInterval(record.name) << keys::scanUnit(record.name);
    for (std::size_t i = 0; i < m_station.NumeFisier.size(); ++i)
        settingKeys += keys::storageName(static_cast<int>(i) + 1);
    settingKeys += keys::title(record.name);

    const QStringList values = valuesOf(settingKeys);
    auto value = values.cbegin();
    for (const LimitSetting &limit : limits)
        limit.value = numberFromText(*value++);
    record.interval_scanare = int16FromText(*value++);
    record.masura_interval = int16FromText(*value++);
    for (QString &name : m_station.NumeFisier)
        name = *value++;
    record.Titlu = *value;
}

void Settings::incarca_nume_senzori(Diagrama &record) const
{
    record.sensorCount = channels::kPerDiagram;
    QStringList nameKeys;
    for (int sensor = 1; sensor <= channels::kPerDiagram; ++sensor)
        nameKeys += keys::sensorName(record.name, sensor);
    record.Nume = valuesOf(nameKeys);
}

SettingsEntries Settings::chei_tab(Diagrama &record, OptionTab tab) const
{
    if (tab == OptionTab::ScanOptions)
        return scanEntries();
    SettingsEntries entries;
    for (const LimitSetting &limit : limitsOf(record, tab)) {
        entries.keys += limit.key;
        entries.values += fileNumberText(limit.value);
    }
    return entries;
}

SettingsEntries Settings::scanEntries() const
{
    const std::array<const Diagrama *, channels::kDiagrams> diagrams{&m_station.diagramAt(0),
                                                                     &m_station.diagramAt(1)};
    SettingsEntries entries;
    for (const Diagrama *diagram : diagrams) {
        entries.keys += keys::scanInterval(diagram->name);
        entries.values += QString::number(diagram->interval_scanare);
    }
    for (const Diagrama *diagram : diagrams) {
        entries.keys += keys::scanUnit(diagram->name);
        entries.values += QString::number(diagram->masura_interval);
    }
    for (std::size_t i = 0; i < m_station.NumeFisier.size(); ++i) {
        entries.keys += keys::storageName(static_cast<int>(i) + 1);
        entries.values += m_station.NumeFisier[i];
    }
    return entries;
}
