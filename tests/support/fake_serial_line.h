#pragma once

#include "platform/runtime_error.h"
#include "platform/serial_line.h"

#include <QByteArrayList>
#include <functional>

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
        ++openings;
    }
    void close() override { m_open = false; }
    void write(const QByteArray &bytes) override
    {
        if (!m_open)
            throw RuntimeError(RuntimeError::PortNotOpen);
        written += bytes;
        if (onWrite)
            onWrite(bytes);
    }
    qint64 bytesAvailable() const override { return m_open ? waiting.size() : 0; }
    QByteArray readAll() override
    {
        const QByteArray bytes = waiting;
        waiting.clear();
        waiting.swap(behindReply);
        return bytes;
    }
    void discardInput() override { waiting.clear(); }

    void arrive(const QByteArray &bytes)
    {
        waiting += bytes;
        if (m_open)
            emit readyRead();
    }
    void vanish()
    {
        m_open = false;
        missing = true;
        emit lost();
    }

    QByteArrayList written; ///< one element per write
    QByteArray waiting;     ///< arrived, not read
    QByteArray behindReply; ///< what the next readAll() leaves waiting
    int openings = 0;
    bool missing = false; ///< opening fails
    std::function<void(const QByteArray &)> onWrite;

private:
    bool m_open = false;
};
