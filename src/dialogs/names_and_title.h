#pragma once

#include <QStringList>

class Settings;
struct Station;

/// Renaming of sensors and diagrams. Both write the settings file first: when that throws, names
/// and title are as they were. A key that the file lacks is reported to the operator; the change
/// then lasts until the program ends.

/// Renames all sensors of a diagram: in the settings file, then in the chart's legend, the diagram
/// record and the sensor table together, so that readings keep reaching their series. Any text is a
/// name. Throws RuntimeError 9 when there is no such diagram or sensor entry; nothing has changed
/// then.
void renameSensors(Station &station, const Settings &settings, std::size_t diagram,
                   const QStringList &names);

/// Changes a diagram's title. Throws RuntimeError 9 when there is no such diagram.
void retitleDiagram(Station &station, const Settings &settings, std::size_t diagram,
                    const QString &title);
