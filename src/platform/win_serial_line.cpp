#include "platform/win_serial_line.h"
#include "platform/runtime_error.h"

#include <QDeadlineTimer>
#include <utility>
#include <windows.h>

namespace
{

// At 9600 baud a reply of 186 bytes takes 194 ms. Waiting for the driver's events instead wakes the
// program for every byte, on some drivers without any.
constexpr int kPollIntervalMs = 10;
// A dead line must not hold the window while a command is written.
constexpr DWORD kWriteLimitMs = 200;

BYTE dcbParity(LineSettings::Parity parity)
{
    switch (parity) {
    case LineSettings::Parity::None:
        return NOPARITY;
    case LineSettings::Parity::Even:
        return EVENPARITY;
    case LineSettings::Parity::Odd:
        return ODDPARITY;
    case LineSettings::Parity::Mark:
        return MARKPARITY;
    case LineSettings::Parity::Space:
        return SPACEPARITY;
    }
    return NOPARITY;
}

BYTE dcbStopBits(LineSettings::StopBits stopBits)
{
    switch (stopBits) {
    case LineSettings::StopBits::One:
        return ONESTOPBIT;
    case LineSettings::StopBits::OneAndHalf:
        return ONE5STOPBITS;
    case LineSettings::StopBits::Two:
        return TWOSTOPBITS;
    }
    return ONESTOPBIT;
}

RuntimeError openError(DWORD number)
{
    switch (number) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
        return RuntimeError(RuntimeError::InvalidPortNumber);
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
        return RuntimeError(RuntimeError::PortAlreadyOpen);
    default:
        return RuntimeError(RuntimeError::InvalidDevice, qt_error_string(static_cast<int>(number)));
    }
}

} // namespace

/// An open, configured port; its destructor closes it.
class WinSerialLine::Port
{
public:
    Port(const QString &name, const LineSettings &settings)
        : m_handle(CreateFileW(reinterpret_cast<const wchar_t *>(name.utf16()),
                               GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr))
    {
        if (m_handle == INVALID_HANDLE_VALUE)
            throw openError(GetLastError());
        if (!configure(settings)) {
            const DWORD number = GetLastError(); // closing sets its own
            CloseHandle(m_handle);
            throw RuntimeError(RuntimeError::InvalidDevice,
                               qt_error_string(static_cast<int>(number)));
        }
    }
    ~Port() { CloseHandle(m_handle); }
    Port(const Port &) = delete;
    Port &operator=(const Port &) = delete;

    /// False also when the timeout truncated the write, which the system reports as a success.
    bool write(const QByteArray &bytes)
    {
        const DWORD size = static_cast<DWORD>(bytes.size());
        DWORD written = 0;
        if (WriteFile(m_handle, bytes.constData(), size, &written, nullptr) && written == size)
            return true;
        discardOutput();
        return false;
    }

    /// Returns when the last byte has left the port, or at the time limit.
    void flush()
    {
        // FlushFileBuffers() has no timeout: leave it nothing to wait for.
        const QDeadlineTimer limit(kWriteLimitMs);
        for (COMSTAT state{}; ClearCommError(m_handle, nullptr, &state) && state.cbOutQue > 0;) {
            if (limit.hasExpired()) {
                discardOutput();
                break;
            }
            Sleep(1);
        }
        FlushFileBuffers(m_handle);
    }

    /// Appends what has arrived; false when the port is gone.
    bool read(QByteArray &received)
    {
        DWORD errors = 0;
        COMSTAT state{};
        if (!ClearCommError(m_handle, &errors, &state))
            return false;
        if (state.cbInQue == 0)
            return true;
        QByteArray bytes(static_cast<qsizetype>(state.cbInQue), Qt::Uninitialized);
        DWORD count = 0;
        if (!ReadFile(m_handle, bytes.data(), state.cbInQue, &count, nullptr))
            return false;
        received.append(bytes.constData(), static_cast<qsizetype>(count));
        return true;
    }

    void discardInput() { PurgeComm(m_handle, PURGE_RXABORT | PURGE_RXCLEAR); }

private:
    void discardOutput() { PurgeComm(m_handle, PURGE_TXABORT | PURGE_TXCLEAR); }

    bool configure(const LineSettings &settings)
    {
        DCB dcb{};
        dcb.DCBlength = sizeof dcb;
        if (!GetCommState(m_handle, &dcb))
            return false;
        dcb.BaudRate = static_cast<DWORD>(settings.baudRate);
        dcb.ByteSize = static_cast<BYTE>(settings.dataBits);
        dcb.Parity = dcbParity(settings.parity);
        dcb.StopBits = dcbStopBits(settings.stopBits);
        dcb.fBinary = TRUE;
        dcb.fParity = settings.parity != LineSettings::Parity::None;
        dcb.fOutxCtsFlow = FALSE;
        dcb.fOutxDsrFlow = FALSE;
        dcb.fDsrSensitivity = FALSE;
        dcb.fOutX = FALSE;
        dcb.fInX = FALSE;
        dcb.fErrorChar = FALSE;
        dcb.fNull = FALSE;
        dcb.fAbortOnError = FALSE;
        // As an untouched serial control sets them; RTS is never switched.
        dcb.fDtrControl = DTR_CONTROL_ENABLE;
        dcb.fRtsControl = RTS_CONTROL_DISABLE;
        COMMTIMEOUTS timeouts{};
        timeouts.ReadIntervalTimeout = MAXDWORD; // reads return at once with what has arrived
        timeouts.WriteTotalTimeoutConstant = kWriteLimitMs;
        return SetCommState(m_handle, &dcb) && SetCommTimeouts(m_handle, &timeouts);
    }

    HANDLE m_handle;
};

WinSerialLine::WinSerialLine(const LineSettings &settings, QObject *parent)
    : SerialLine(parent), m_settings(settings), m_portName(systemPortName(settings.port))
{
    setObjectName(QStringLiteral("ControlPlc"));
    // Only with this prefix does the system know ports above COM9.
    if (!m_portName.startsWith(QLatin1String(R"(\\)")))
        m_portName.prepend(QLatin1String(R"(\\.\)"));
    m_poll.setInterval(kPollIntervalMs);
    m_poll.setTimerType(Qt::PreciseTimer);
    connect(&m_poll, &QTimer::timeout, this, &WinSerialLine::collect);
}

WinSerialLine::~WinSerialLine() = default;

bool WinSerialLine::isOpen() const
{
    return m_port != nullptr;
}

void WinSerialLine::open()
{
    if (m_port)
        throw RuntimeError(RuntimeError::PortAlreadyOpen);
    m_port = std::make_shared<Port>(m_portName, m_settings);
    m_poll.start();
}

void WinSerialLine::close()
{
    if (!m_port)
        return;
    m_port->flush();
    m_poll.stop();
    m_port.reset();
    m_received.clear();
}

void WinSerialLine::write(const QByteArray &bytes)
{
    if (!m_port)
        throw RuntimeError(RuntimeError::PortNotOpen);
    if (m_port->write(bytes))
        return;
    // Queued: a caller of write() must not find the line closed. By the time this runs the line may
    // be open again, through another port.
    QMetaObject::invokeMethod(
        this,
        [this, port = std::weak_ptr<Port>(m_port)] {
            if (!port.expired())
                lose();
        },
        Qt::QueuedConnection);
}

qint64 WinSerialLine::bytesAvailable() const
{
    return m_received.size();
}

QByteArray WinSerialLine::readAll()
{
    return std::exchange(m_received, {});
}

void WinSerialLine::discardInput()
{
    m_received.clear();
    if (m_port)
        m_port->discardInput();
}

void WinSerialLine::collect()
{
    const qsizetype before = m_received.size();
    if (!m_port->read(m_received))
        lose();
    else if (m_received.size() > before)
        emit readyRead();
}

void WinSerialLine::lose()
{
    m_poll.stop();
    m_port.reset();
    m_received.clear();
}
