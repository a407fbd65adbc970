#pragma once

#include <QString>

/// The program that shows the computer's hardware and system: on Windows the system's own tool,
/// elsewhere the first installed one of the usual desktops. Empty when there is none.
QString systemInformationTool();

/// Starts it; false when it could not be started, or the path is empty.
bool startSystemInformation(const QString &tool);

/// Bytes of memory that the system has.
qint64 physicalMemory();
