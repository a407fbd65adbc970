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

void Settings::incarca_setari_diagrama(Diagrama &record)
{
    QStringList settingKeys{keys::lowerLimit(record.name),   keys::upperLimit(record.name),
                            keys::lowerAlarm(record.name),   keys::upperAlarm(record.name),
                            keys::scanInterval(record.name), keys::scanUnit(record.name)};
    const qsizetype firstName = settingKeys.size();
    for (std::size_t i = 0; i < m_station.NumeFisier.size(); ++i)
        settingKeys += keys::storageName(static_cast<int>(i) + 1);
    settingKeys += keys::title(record.name);

    const QStringList values = valuesOf(settingKeys);
    record.limita_minima = numberFromText(values.at(0));
    record.limita_maxima = numberFromText(values.at(1));
    record.alarma_minim = numberFromText(values.at(2));
    record.alarma_maxim = numberFromText(values.at(3));
    record.interval_scanare = int16FromText(values.at(4));
    record.masura_interval = int16FromText(values.at(5));
    std::copy_n(values.begin() + firstName, m_station.NumeFisier.size(),
                m_station.NumeFisier.begin());
    record.Titlu = values.last();
}

void Settings::incarca_nume_senzori(Diagrama &record) const
{
    record.sensorCount = channels::kPerDiagram;
    QStringList nameKeys;
    for (int sensor = 1; sensor <= channels::kPerDiagram; ++sensor)
        nameKeys += keys::sensorName(record.name, sensor);
    record.Nume = valuesOf(nameKeys);
}

SettingsEntries Settings::chei_tab(const Diagrama &record, OptionTab tab) const
{
    switch (tab) {
    case OptionTab::GraphLimits:
        return {{keys::lowerLimit(record.name), keys::upperLimit(record.name)},
                {fileNumberText(record.limita_minima), fileNumberText(record.limita_maxima)}};
    case OptionTab::Alarms:
        return {{keys::lowerAlarm(record.name), keys::upperAlarm(record.name)},
                {fileNumberText(record.alarma_minim), fileNumberText(record.alarma_maxim)}};
    case OptionTab::ScanOptions:
        return scanEntries();
    }
    return {};
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
