#pragma once

#include <QString>

/// The program that shows what the computer is made of: the system's own tool on Windows, the
/// first of the usual desktops' tools that is installed elsewhere. Empty when there is none.
QString systemInformationTool();

/// Starts it; false when it could not be started, or the path is empty.
bool startSystemInformation(const QString &tool);

/// Bytes of memory that the system has.
qint64 physicalMemory();
