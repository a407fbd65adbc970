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

/// On a pseudo-terminal, whose other end is the named port; once the line is closed, that port is
/// gone for good. The link, when a name is given, is made to point to the port and stands for its
/// name; one that is left from an earlier run is replaced. Throws std::runtime_error
/// (std::system_error among them) when the terminal or the link cannot be made; Windows has no
/// pseudo-terminals.
RecorderLine openPseudoTerminal(const QString &link = {});
