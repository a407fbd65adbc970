#pragma once

#include "platform/runtime_error.h"
#include "platform/serial_line.h"

#include <QByteArrayList>
#include <functional>
#include <utility>

/// A line whose other side is the test: it records what is written and gives what arrives.
class FakeSerialLine final : public SerialLine
{
public:
    bool isOpen() const override { return m_open; }
    void open() override
    {
        if (missing)
            throw RuntimeError(RuntimeError::InvalidPortNumber);
        m_open = true;
    }
    void close() override { m_open = false; }
    void write(const QByteArray &bytes) override
    {
        written += bytes;
        if (onWrite)
            onWrite(bytes);
    }
    qint64 bytesAvailable() const override { return m_open ? waiting.size() : 0; }
    QByteArray readAll() override { return std::exchange(waiting, std::exchange(behindReply, {})); }
    void discardInput() override { waiting.clear(); }

    void arrive(const QByteArray &bytes)
    {
        waiting += bytes;
        emit readyRead();
    }

    QByteArrayList written; ///< one element per write
    QByteArray waiting;     ///< arrived, not read
    QByteArray behindReply; ///< what the next readAll() leaves waiting
    bool missing = false;   ///< opening fails
    std::function<void(const QByteArray &)> onWrite;

private:
    bool m_open = false;
};
