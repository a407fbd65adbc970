#include "tools/trm10c_simulator/recorder_line.h"
#include "platform/system_serial_line.h"

RecorderLine openSerialPort(const QString &port)
{
    LineSettings settings;
    settings.port = port;
    RecorderLine end{makeSerialLine(settings, nullptr), port};
    end.line->open();
    end.line->discardInput();
    return end;
}
