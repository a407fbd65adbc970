#include "platform/qt_serial_line.h"
#include "platform/runtime_error.h"

#include <QDeadlineTimer>
#include <QSerialPort>
#include <QThread>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace
{

// A dead line must not hold the window when the rest of a command is sent before closing.
constexpr int kFlushLimitMs = 200;
constexpr int kDrainLimitMs = 1000; // a command at 110 baud takes 0.8 s

QSerialPort::Parity portParity(LineSettings::Parity parity)
{
    switch (parity) {
    case LineSettings::Parity::None:
        return QSerialPort::NoParity;
    case LineSettings::Parity::Even:
        return QSerialPort::EvenParity;
    case LineSettings::Parity::Odd:
        return QSerialPort::OddParity;
    case LineSettings::Parity::Mark:
        return QSerialPort::MarkParity;
    case LineSettings::Parity::Space:
        return QSerialPort::SpaceParity;
    }
    return QSerialPort::NoParity;
}

QSerialPort::StopBits portStopBits(LineSettings::StopBits stopBits)
{
    switch (stopBits) {
    case LineSettings::StopBits::One:
        return QSerialPort::OneStop;
    case LineSettings::StopBits::OneAndHalf:
        return QSerialPort::OneAndHalfStop;
    case LineSettings::StopBits::Two:
        return QSerialPort::TwoStop;
    }
    return QSerialPort::OneStop;
}

RuntimeError openError(const QSerialPort &port)
{
    switch (port.error()) {
    case QSerialPort::DeviceNotFoundError:
        return RuntimeError(RuntimeError::InvalidPortNumber);
    case QSerialPort::PermissionError:
        // The toolkit says the same for a port in use and for one this user may not open.
        return RuntimeError(RuntimeError::PortAlreadyOpen);
    case QSerialPort::UnsupportedOperationError:
        return RuntimeError(RuntimeError::InvalidDevice);
    default:
        return RuntimeError(RuntimeError::InvalidDevice, port.errorString());
    }
}

/// Returns when the last byte has left the port: closing it puts its old line settings back.
void drain(int port)
{
    // tcdrain() has a timeout for the chip's buffer only, none for the system's queue.
    const QDeadlineTimer limit(kDrainLimitMs);
    for (int queued = 0; ::ioctl(port, TIOCOUTQ, &queued) == 0 && queued > 0;) {
        if (limit.hasExpired()) {
            ::tcflush(port, TCOFLUSH);
            return;
        }
        QThread::msleep(1);
    }
    ::tcdrain(port);
}

/// Closes the port and leaves its control lines as they are. Hanging up, the default, would switch
/// them off after each exchange and on again before the next.
void closeWithoutHangUp(QSerialPort &port)
{
    // A second descriptor keeps it open while the old settings are put back: they may hang up.
    const int device = ::fcntl(port.handle(), F_DUPFD_CLOEXEC, 0);
    port.close();
    termios settings{};
    if (::tcgetattr(device, &settings) == 0) {
        settings.c_cflag &= ~tcflag_t(HUPCL);
        ::tcsetattr(device, TCSANOW, &settings);
    }
    ::close(device);
}

} // namespace

QtSerialLine::QtSerialLine(const LineSettings &settings, QObject *parent)
    : SerialLine(parent), m_port(new QSerialPort(this))
{
    m_port->setObjectName(QStringLiteral("ControlPlc"));
    m_port->setPortName(systemPortName(settings.port));
    m_port->setBaudRate(settings.baudRate);
    m_port->setParity(portParity(settings.parity));
    m_port->setDataBits(static_cast<QSerialPort::DataBits>(settings.dataBits));
    m_port->setStopBits(portStopBits(settings.stopBits));
    m_port->setFlowControl(QSerialPort::NoFlowControl);
    connect(m_port, &QSerialPort::readyRead, this, &SerialLine::readyRead);
    connect(m_port, &QSerialPort::errorOccurred, this, &QtSerialLine::onError);
}

bool QtSerialLine::isOpen() const
{
    return m_port->isOpen();
}

void QtSerialLine::open()
{
    if (!m_port->open(QIODevice::ReadWrite))
        throw openError(*m_port);
}

void QtSerialLine::close()
{
    if (!m_port->isOpen())
        return;
    while (m_port->bytesToWrite() > 0 && m_port->waitForBytesWritten(kFlushLimitMs)) {
    }
    drain(m_port->handle());
    closeWithoutHangUp(*m_port);
}

void QtSerialLine::write(const QByteArray &bytes)
{
    if (!m_port->isOpen())
        throw RuntimeError(RuntimeError::PortNotOpen);
    m_port->write(bytes);
}

qint64 QtSerialLine::bytesAvailable() const
{
    return m_port->isOpen() ? m_port->bytesAvailable() : 0;
}

QByteArray QtSerialLine::readAll()
{
    return m_port->readAll();
}

void QtSerialLine::discardInput()
{
    m_port->clear(QSerialPort::Input);
}

void QtSerialLine::onError()
{
    // A port whose other side is gone floods the event loop with errors while it is open.
    if (!m_port->isOpen() || m_port->error() == QSerialPort::NoError ||
        m_port->error() == QSerialPort::TimeoutError)
        return;
    closeWithoutHangUp(*m_port);
}
