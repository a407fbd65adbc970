#pragma once

#include <QString>

/// The program that shows what the computer is made of: the system's own tool on Windows, the
/// first of the usual desktops' tools that is installed elsewhere. Empty when there is none.
QString systemInformationTool();

/// Starts it. Throws RuntimeError 53 when it could not be started.
void startSystemInformation(const QString &tool);
