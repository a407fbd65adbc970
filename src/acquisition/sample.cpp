#include "acquisition/sample.h"
#include "app/settings/station.h"
#include "platform/numeric_text.h"
#include "platform/runtime_error.h"

void completeSample(Station &station, const QDateTime &readingTime)
{
    for (Sensor &sensor : station.sensors) {
        if (sensor.diagram >= station.Diagrame.size())
            throw RuntimeError(RuntimeError::SubscriptOutOfRange);
        const Diagrama &diagram = station.Diagrame[sensor.diagram];
        sensor.value += numberFromText(sensor.calibrationText);
        sensor.alarm = sensor.value <= diagram.alarma_minim || sensor.value >= diagram.alarma_maxim;
        sensor.readingTime = readingTime;
    }
}
