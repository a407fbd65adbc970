#pragma once

#include "platform/line_settings.h"
#include "platform/serial_line.h"

class QSerialPort;

/// The real line. The port object is named "ControlPlc" and is a child of this one.
class QtSerialLine final : public SerialLine
{
    Q_OBJECT
public:
    explicit QtSerialLine(const LineSettings &settings, QObject *parent = nullptr);

    bool isOpen() const override;
    void open() override;
    void close() override;
    void write(const QByteArray &bytes) override;
    qint64 bytesAvailable() const override;
    QByteArray readAll() override;
    void discardInput() override;

private:
    void onError();

    QSerialPort *m_port;
};
