#pragma once

#include "tools/trm10c_simulator/recorder_line.h"

/// A line from a simulated recorder to the station.
struct JoinedLine {
    std::unique_ptr<SerialLine> recorderEnd; ///< open
    QString stationPort;                     ///< what the station opens
    /// Bytes are there once they are written, and closing one end takes the other's port away.
    bool isImmediate = true;
};

/// Over a pseudo-terminal, or over the two joined ports that STATION_TEST_PORTS names, the
/// station's first ("COM1,COM2"): systems without pseudo-terminals need them.
inline JoinedLine joinLine()
{
    const QStringList ports = qEnvironmentVariable("STATION_TEST_PORTS").split(u',');
    if (ports.size() == 2)
        return {openSerialPort(ports[1]).line, ports[0], false};
    RecorderLine end = openPseudoTerminal();
    return {std::move(end.line), end.portName, true};
}
