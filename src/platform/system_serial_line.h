#pragma once

#include "platform/line_settings.h"
#include "platform/serial_line.h"

#include <memory>

/// The line over a port of the system the program runs on; closed at first. Throws RuntimeError
/// 8002 when the settings name a port that no system can have.
std::unique_ptr<SerialLine> makeSerialLine(const LineSettings &settings, QObject *parent);
