#pragma once

#include <QDateTime>
#include <QString>

/// One measuring channel: a sensor series of a live diagram.
struct Sensor {
    double value = 0;        ///< latest reading; degrees Celsius
    QString calibrationText; ///< offset added to each reading, in the screen locale's form
    bool alarm = false;      ///< the reading is at or beyond an alarm limit of its diagram
    QString key;             ///< diagram name + ".Senzor" + column number from 1
    QString name;            ///< the label of its chart series
    QString label;           ///< "Senzor" + position in the sensor table from 1: its storage column
    QString channelCode;     ///< cod_senzor of the key
    QDateTime readingTime;
    quint8 diagram = 0; ///< index into the diagram table
};

/// Code of a recorder channel by its short name ("T1" to "T4", "P1" to "P4"); empty for any other.
QString cod_senzor(const QString &text);
