#pragma once

#include <QByteArray>
#include <QString>

/// The recorder's end of a pseudo-terminal whose other end is a serial port to the station. Exists
/// on Unix systems only.
class PseudoTerminal
{
public:
    /// Throws std::system_error when the system gives none.
    PseudoTerminal();
    ~PseudoTerminal();
    Q_DISABLE_COPY_MOVE(PseudoTerminal)

    const QString &portName() const { return m_portName; }
    int descriptor() const { return m_master; } ///< readable when bytes have come; never blocks

    QByteArray read();
    /// Writes as much as the terminal takes; a line that nobody reads loses the rest.
    void write(const QByteArray &bytes);

private:
    int m_master = -1;
    int m_slave = -1;
    QString m_portName;
};
