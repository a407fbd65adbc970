#pragma once

#include <QByteArray>
#include <QObject>

/// The line to the recorder, as the exchange needs it. Bytes are raw; nothing is buffered beyond
/// what the system holds and what has arrived since the last read.
class SerialLine : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// False once the other side or the port itself is gone: the line then closes itself.
    virtual bool isOpen() const = 0;
    /// Opens the line. Bytes that arrived before may wait in it: see discardInput(). Throws
    /// RuntimeError 8002 (no such port), 8005 (in use, or no permission), 8006 (not a serial port).
    virtual void open() = 0;
    /// Sends what is still unwritten, waits until it has left, for about a second at most, then
    /// closes. A line already closed stays closed.
    virtual void close() = 0;
    /// Throws RuntimeError 8018 when the line is not open.
    virtual void write(const QByteArray &bytes) = 0;
    /// Received bytes that wait to be read; 0 when the line is closed.
    virtual qint64 bytesAvailable() const = 0;
    virtual QByteArray readAll() = 0;
    /// Discards what has arrived, the system's buffer included. Precondition: isOpen().
    virtual void discardInput() = 0;

signals:
    /// More bytes wait than before.
    void readyRead();
};
