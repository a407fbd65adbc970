#include "platform/system_serial_line.h"

#ifdef Q_OS_WIN
#include "platform/win_serial_line.h"
using SystemSerialLine = WinSerialLine;
#else
#include "platform/qt_serial_line.h"
using SystemSerialLine = QtSerialLine;
#endif

std::unique_ptr<SerialLine> makeSerialLine(const LineSettings &settings, QObject *parent)
{
    return std::make_unique<SystemSerialLine>(settings, parent);
}
