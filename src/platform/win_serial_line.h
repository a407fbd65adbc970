#pragma once

#include "platform/line_settings.h"
#include "platform/serial_line.h"

#include <QTimer>
#include <memory>

/// The real line on Windows, through the system's own calls: the Windows program is built without
/// Qt's serial module. While it is open it polls the port every 10 ms. It is named "ControlPlc".
class WinSerialLine final : public SerialLine
{
    Q_OBJECT
public:
    /// Throws RuntimeError 8002 for a port number below 1.
    explicit WinSerialLine(const LineSettings &settings, QObject *parent = nullptr);
    ~WinSerialLine() override;

    bool isOpen() const override;
    void open() override;
    void close() override;
    void write(const QByteArray &bytes) override;
    qint64 bytesAvailable() const override;
    QByteArray readAll() override;
    void discardInput() override;

private:
    class Port;

    void collect();
    void lose();

    LineSettings m_settings;
    QString m_portName;
    std::shared_ptr<Port> m_port; ///< null when the line is closed; nobody else keeps it
    QByteArray m_received;
    QTimer m_poll;
};
