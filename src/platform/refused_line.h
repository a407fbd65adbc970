#pragma once

#include "platform/runtime_error.h"
#include "platform/serial_line.h"

/// Stands in for a line whose settings no port can have: it never opens. It is named "ControlPlc".
class RefusedLine final : public SerialLine
{
public:
    /// `reason` is what open() throws.
    RefusedLine(const RuntimeError &reason, QObject *parent) : SerialLine(parent), m_reason(reason)
    {
        setObjectName(QStringLiteral("ControlPlc"));
    }

    bool isOpen() const override { return false; }
    void open() override { throw m_reason; }
    void close() override {}
    void write(const QByteArray &) override { throw RuntimeError(RuntimeError::PortNotOpen); }
    qint64 bytesAvailable() const override { return 0; }
    QByteArray readAll() override { return {}; }
    void discardInput() override {}

private:
    RuntimeError m_reason;
};
