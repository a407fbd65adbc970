#pragma once

#include "platform/serial_line.h"

#include <memory>

/// The recorder's end of the line to the station.
struct RecorderLine {
    std::unique_ptr<SerialLine> line; ///< open
    QString portName;
};

/// On a serial port, named as the station names its own; a cable joins the two. Throws RuntimeError
/// as opening the port does.
RecorderLine openSerialPort(const QString &port);

/// On a new pseudo-terminal; its other end is the named port, which disappears when the line is
/// closed. `link`: path of a symbolic link to create to the port, empty for none; it is then the
/// port's name and replaces the link of an earlier run. Throws std::runtime_error when the terminal
/// or the link cannot be created; Windows has no pseudo-terminals.
RecorderLine openPseudoTerminal(const QString &link = {});
