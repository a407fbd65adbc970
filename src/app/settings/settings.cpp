#include "app/settings/settings.h"
#include "app/settings/config_text.h"
#include "app/settings/keys.h"
#include "app/settings/texts.h"
#include "platform/durable_file.h"
#include "platform/numeric_text.h"
#include "platform/operator.h"
#include "platform/runtime_error.h"

#include <QFile>
#include <algorithm>

namespace
{

const Diagrama &diagramNamed(const Station &station, const QString &name)
{
    const auto found = std::find_if(station.Diagrame.cbegin(), station.Diagrame.cend(),
                                    [&](const Diagrama &record) { return record.name == name; });
    if (found == station.Diagrame.cend())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    return *found;
}

struct TabEntries {
    QStringList keys;
    QStringList values;
};

TabEntries limitEntries(const QString &name, const QString &lower, double lowerValue,
                        const QString &upper, double upperValue)
{
    return {{name + lower, name + upper}, {fileNumberText(lowerValue), fileNumberText(upperValue)}};
}

TabEntries scanEntries(const Station &station)
{
    // Both diagrams and the storage names belong to this tab, whichever dialog asks.
    if (station.Diagrame.size() < 2)
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    const Diagrama &first = station.Diagrame[0];
    const Diagrama &second = station.Diagrame[1];
    TabEntries entries{
        {QStringLiteral("Diagrama1.interval_scanare ="),
         QStringLiteral("Diagrama2.interval_scanare ="),
         QStringLiteral("Diagrama1.masura_interval ="),
         QStringLiteral("Diagrama2.masura_interval =")},
        {QString::number(first.interval_scanare), QString::number(second.interval_scanare),
         QString::number(first.masura_interval), QString::number(second.masura_interval)}};
    for (std::size_t i = 0; i < station.NumeFisier.size(); ++i) {
        entries.keys += keys::storageName(static_cast<int>(i) + 1);
        entries.values += station.NumeFisier[i];
    }
    return entries;
}

TabEntries tabEntries(const Station &station, const QString &name, const QString &tab)
{
    const Diagrama &record = diagramNamed(station, name);
    if (tab == texts::settings::tabGraphLimits())
        return limitEntries(name, QStringLiteral(".limita_minima ="), record.limita_minima,
                            QStringLiteral(".limita_maxima ="), record.limita_maxima);
    if (tab == texts::settings::tabAlarms())
        return limitEntries(name, QStringLiteral(".alarma_minim ="), record.alarma_minim,
                            QStringLiteral(".alarma_maxim ="), record.alarma_maxim);
    if (tab == texts::settings::tabScanOptions())
        return scanEntries(station);
    return {};
}

} // namespace

QByteArray Settings::readFile() const
{
    QFile file(m_station.configPath());
    if (!file.open(QIODevice::ReadOnly))
        throw fileError(file);
    const QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw fileError(file);
    return content;
}

void Settings::sizeLists(int count)
{
    m_station.Chei.clear();
    m_station.Chei.resize(count);
    m_station.Valori.clear();
    m_station.Valori.resize(count);
}

int Settings::citeste_config(const QStringList &Chei, int last)
{
    const QByteArray file = readFile();
    for (int i = 0; i <= last; ++i) {
        const std::optional<QString> value = valueOfKey(file, Chei.at(i));
        if (!value) {
            m_operator.tell(texts::settings::configError(), Operator::Icon::Critical);
            return i;
        }
        m_station.Valori[i] = *value;
    }
    return last + 1;
}

void Settings::scrie_config(const QStringList &Chei, int last)
{
    const QByteArray file = readFile();
    const QStringList keys = Chei.first(last + 1);
    QStringList lines;
    for (int i = 0; i <= last; ++i) {
        QString &value = m_station.Valori[i];
        if (typedNumber(value))
            value.replace(QLatin1Char(','), QLatin1Char('.'));
        for (const char lineEnd : {'\r', '\n'}) // pasted along; they would end the line in the file
            value.replace(QLatin1Char(lineEnd), QLatin1Char(' '));
        lines += keys.at(i) + QLatin1Char(',') + value;
    }
    const std::optional<QByteArray> content = withKeysReplaced(file, keys, lines);
    if (!content) {
        m_operator.tell(texts::settings::configError(), Operator::Icon::Critical);
        return;
    }
    replaceFile(m_station.configPath(), *content);
}

void Settings::save(const QStringList &keys, const QStringList &values)
{
    m_station.Chei = keys;
    m_station.Valori = values;
    scrie_config(m_station.Chei, static_cast<int>(keys.size()) - 1);
}

std::optional<QString> Settings::optionalValue(const QString &key) const
{
    return valueOfKey(readFile(), key);
}

void Settings::incarca_setari_diagrama(Diagrama &record)
{
    sizeLists(11);
    QStringList &Chei = m_station.Chei;
    const QStringList suffixes{
        QStringLiteral(".limita_minima ="),    QStringLiteral(".limita_maxima ="),
        QStringLiteral(".alarma_minim ="),     QStringLiteral(".alarma_maxim ="),
        QStringLiteral(".interval_scanare ="), QStringLiteral(".masura_interval =")};
    for (int i = 0; i < suffixes.size(); ++i)
        Chei[i] = record.name + suffixes.at(i);
    for (int i = 0; i < 4; ++i)
        Chei[i + 6] = keys::storageName(i + 1);
    Chei[10] = keys::title(record.name);
    citeste_config(Chei, 10);

    const QStringList &Valori = m_station.Valori;
    record.limita_minima = numberFromText(Valori.at(0));
    record.limita_maxima = numberFromText(Valori.at(1));
    record.alarma_minim = numberFromText(Valori.at(2));
    record.alarma_maxim = numberFromText(Valori.at(3));
    record.interval_scanare = int16FromText(Valori.at(4));
    record.masura_interval = int16FromText(Valori.at(5));
    for (int i = 0; i < 4; ++i)
        m_station.NumeFisier[static_cast<std::size_t>(i)] = Valori.at(i + 6);
    record.Titlu = Valori.at(10);
}

void Settings::incarca_nume_senzori(Diagrama &record)
{
    record.sensorCount = channels::kPerDiagram;
    sizeLists(channels::kPerDiagram);
    for (int i = 0; i < channels::kPerDiagram; ++i)
        m_station.Chei[i] = keys::sensorName(record.name, i + 1);
    citeste_config(m_station.Chei, channels::kPerDiagram - 1);
    record.Nume = m_station.Valori;
}

void Settings::citeste_calibrari()
{
    const int count = static_cast<int>(m_station.sensors.size());
    sizeLists(count);
    for (int i = 0; i < count; ++i)
        m_station.Chei[i] = keys::calibration(m_station.sensors[static_cast<std::size_t>(i)].key);
    citeste_config(m_station.Chei, count - 1);
    for (int i = 0; i < count; ++i)
        m_station.sensors[static_cast<std::size_t>(i)].calibrationText =
            numberText(leadingNumber(m_station.Valori.at(i)), m_station.locale);
}

int Settings::chei_tab(const QString &diagramName, const QString &tab, Mode mode)
{
    const TabEntries entries = tabEntries(m_station, diagramName, tab);
    const int count = static_cast<int>(entries.keys.size());
    sizeLists(count);
    m_station.Chei = entries.keys;
    if (mode == Mode::Scrie)
        m_station.Valori = entries.values;
    return count - 1;
}
