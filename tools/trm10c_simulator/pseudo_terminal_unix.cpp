#include "platform/runtime_error.h"
#include "tools/trm10c_simulator/recorder_line.h"

#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>
#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace
{

int checked(int result)
{
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), "pseudo-terminal");
    return result;
}

class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(checked(number)) {}
    ~Descriptor() { ::close(m_number); }
    Q_DISABLE_COPY_MOVE(Descriptor)

    operator int() const { return m_number; }

private:
    int m_number;
};

/// Both ends of a terminal. Held open here, it survives the station's closing it after each
/// exchange.
class Terminal
{
public:
    Terminal()
    {
        termios settings{};
        checked(::tcgetattr(m_slave, &settings));
        ::cfmakeraw(&settings);
        checked(::tcsetattr(m_slave, TCSANOW, &settings));
    }

    int master() const { return m_master; } ///< readable when bytes have come; never blocks
    const QString &portName() const { return m_portName; }

private:
    static QString unlockedPort(int master)
    {
        checked(::grantpt(master));
        checked(::unlockpt(master));
        return QString::fromLocal8Bit(::ptsname(master));
    }

    Descriptor m_master{::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)};
    QString m_portName = unlockedPort(m_master);
    Descriptor m_slave{::open(m_portName.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC)};
};

class TerminalLine final : public SerialLine
{
public:
    TerminalLine()
    {
        m_readable.emplace(m_terminal->master(), QSocketNotifier::Read);
        connect(&*m_readable, &QSocketNotifier::activated, this, &SerialLine::readyRead);
    }
    ~TerminalLine() override { TerminalLine::close(); }

    QString portName() const { return m_terminal->portName(); }
    void makeLink(const QString &link)
    {
        if (QFileInfo(link).isSymLink())
            QFile::remove(link);
        QFile port(portName());
        if (!port.link(link))
            throw std::runtime_error(QStringLiteral("cannot make the link %1: %2")
                                         .arg(link, port.errorString())
                                         .toStdString());
        m_link = link;
    }

    bool isOpen() const override { return m_terminal.has_value(); }
    void open() override
    {
        if (!m_terminal) // it was the system's to give, and only once
            throw RuntimeError(RuntimeError::InvalidPortNumber);
    }
    void close() override
    {
        m_readable.reset();
        m_terminal.reset();
        if (!m_link.isEmpty())
            QFile::remove(std::exchange(m_link, {}));
    }
    /// As much as the terminal takes; a line that nobody reads loses the rest.
    void write(const QByteArray &bytes) override
    {
        if (!m_terminal)
            throw RuntimeError(RuntimeError::PortNotOpen);
        [[maybe_unused]] const ssize_t taken = ::write(m_terminal->master(), bytes.constData(),
                                                       static_cast<std::size_t>(bytes.size()));
    }
    qint64 bytesAvailable() const override
    {
        int count = 0;
        return m_terminal && ::ioctl(m_terminal->master(), FIONREAD, &count) == 0 ? count : 0;
    }
    QByteArray readAll() override
    {
        QByteArray bytes(bytesAvailable(), Qt::Uninitialized);
        if (bytes.isEmpty())
            return bytes;
        const ssize_t count =
            ::read(m_terminal->master(), bytes.data(), static_cast<std::size_t>(bytes.size()));
        bytes.truncate(count > 0 ? count : 0);
        return bytes;
    }
    void discardInput() override { readAll(); }

private:
    std::optional<Terminal> m_terminal{std::in_place}; ///< empty when the line is closed
    std::optional<QSocketNotifier> m_readable;
    QString m_link;
};

} // namespace

RecorderLine openPseudoTerminal(const QString &link)
{
    auto line = std::make_unique<TerminalLine>();
    QString portName = line->portName();
    if (!link.isEmpty()) {
        line->makeLink(link);
        portName = QFileInfo(link).absoluteFilePath();
    }
    return {std::move(line), portName};
}
