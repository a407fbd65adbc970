#pragma once

#include <QString>

/// A port and its line settings. The defaults are those of an untouched serial control: first
/// serial port, 9600 baud, no parity, 8 data bits, 1 stop bit, no handshake.
struct LineSettings {
    enum class Parity { None, Even, Odd, Mark, Space };
    enum class StopBits { One, OneAndHalf, Two };

    QString port = QStringLiteral("1"); ///< number from 1, device name, or path of a device
    int baudRate = 9600;
    Parity parity = Parity::None;
    int dataBits = 8;
    StopBits stopBits = StopBits::One;
};

/// Reads the usual short form "9600,n,8,1" (baud, parity letter n e o m s, data bits 5 to 8, stop
/// bits 1, 1.5 or 2) into `settings`. Throws RuntimeError 380 on any other text.
void parseLineSettings(const QString &text, LineSettings &settings);

/// The system's name of the port: a number n is the n-th serial port, anything else is taken as it
/// is. Throws RuntimeError 8002 for a number below 1.
QString systemPortName(const QString &port);
