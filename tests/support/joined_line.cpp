#include "tests/support/joined_line.h"
#include "tools/trm10c_simulator/recorder_line.h"

JoinedLine joinLine()
{
    const QStringList ports = qEnvironmentVariable("STATION_TEST_PORTS").split(u',');
    if (ports.size() == 2)
        return {openSerialPort(ports[1]).line, ports[0], false};
    RecorderLine end = openPseudoTerminal();
    return {std::move(end.line), end.portName, true};
}
