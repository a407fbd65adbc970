#include "app/settings/calibration.h"
#include "app/settings/keys.h"
#include "app/settings/settings.h"
#include "platform/numeric_text.h"

static QStringList calibrationKeys(const Station &station)
{
    QStringList calibrationKeys;
    for (const Sensor &sensor : station.sensors)
        calibrationKeys += keys::calibration(sensor.key);
    return calibrationKeys;
}

void citeste_calibrari(Station &station, const Settings &settings)
{
    const QStringList values = settings.citeste_config(calibrationKeys(station));
    for (std::size_t i = 0; i < station.sensors.size(); ++i)
        station.sensors[i].calibrationText =
            numberText(leadingNumber(values.value(static_cast<qsizetype>(i))), station.locale);
}

bool takeCalibrations(Station &station, QStringList &offsets)
{
    for (qsizetype i = 0; i < offsets.size(); ++i) {
        const std::optional<double> offset = typedNumber(offsets[i]);
        if (!offset)
            return false;
        offsets[i] = withDecimalPoint(offsets[i]);
        station.sensors.at(static_cast<std::size_t>(i)).calibrationText =
            numberText(*offset, station.locale);
    }
    return true;
}

void saveCalibrations(const Station &station, const Settings &settings, const QStringList &offsets)
{
    settings.scrie_config(calibrationKeys(station), offsets);
}
