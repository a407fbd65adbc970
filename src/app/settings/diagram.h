#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <vector>

class ChartGrid;

/// The settings of one diagram and what belongs to it. The fields keep the names by which the
/// settings file and the operators' manual know them.
struct Diagrama {
    QStringList Nume; ///< display names of the diagram's sensors
    QString Titlu;    ///< shown above the diagram
    quint8 sensorCount = 0;
    ChartGrid *chart = nullptr;        ///< not owned: outlives the window that draws it
    double limita_minima = 0;          ///< lower end of the value axis, degrees Celsius
    double limita_maxima = 0;          ///< upper end of the value axis, degrees Celsius
    double alarma_minim = 0;           ///< a reading at or below it is an alarm
    double alarma_maxim = 0;           ///< a reading at or above it is an alarm
    qint16 diagramNumber = 0;          ///< order in which the chart was found, from 0
    qint16 interval_scanare = 0;       ///< time between samples, in units of masura_interval
    qint16 masura_interval = 0;        ///< 0 seconds, 1 minutes, 2 hours, 3 days
    std::vector<QDateTime> timeStamps; ///< when each chart row was written; index 0 never is
    QString name;                      ///< its chart's tag, the prefix of its settings keys
};
