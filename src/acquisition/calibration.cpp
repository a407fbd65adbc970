#include "acquisition/calibration.h"
#include "acquisition/texts.h"
#include "app/settings/keys.h"
#include "app/settings/settings.h"
#include "platform/numeric_text.h"
#include "platform/operator.h"

bool saveCalibrations(Station &station, Settings &settings, Operator &op, QStringList texts,
                      const ShowOffset &show)
{
    QStringList calibrationKeys;
    for (qsizetype i = 0; i < texts.size(); ++i) {
        QString &text = texts[i];
        const std::optional<double> offset = typedNumber(text);
        if (!offset) {
            op.tell(texts::acquisition::checkCalibrations(), Operator::Icon::Exclamation);
            return false;
        }
        text = withDecimalPoint(text);
        show(i, text);
        Sensor &sensor = station.sensors.at(static_cast<std::size_t>(i));
        sensor.calibrationText = numberText(*offset, station.locale);
        calibrationKeys += keys::calibration(sensor.key);
    }
    settings.save(calibrationKeys, texts);
    return true;
}
