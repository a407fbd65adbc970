#include "tools/trm10c_simulator/pseudo_terminal.h"

#include <cerrno>
#include <fcntl.h>
#include <stdlib.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

static int checked(int result)
{
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), "pseudo-terminal");
    return result;
}

PseudoTerminal::PseudoTerminal()
{
    try {
        m_master = checked(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
        checked(::grantpt(m_master));
        checked(::unlockpt(m_master));
        m_portName = QString::fromLocal8Bit(::ptsname(m_master));
        // Held open here, the terminal survives the station's closing it after each exchange.
        m_slave =
            checked(::open(m_portName.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        termios settings{};
        checked(::tcgetattr(m_slave, &settings));
        ::cfmakeraw(&settings);
        checked(::tcsetattr(m_slave, TCSANOW, &settings));
    } catch (...) {
        ::close(m_slave);
        ::close(m_master);
        throw;
    }
}

PseudoTerminal::~PseudoTerminal()
{
    ::close(m_slave);
    ::close(m_master);
}

QByteArray PseudoTerminal::read()
{
    QByteArray bytes(1024, Qt::Uninitialized);
    const ssize_t count = ::read(m_master, bytes.data(), static_cast<std::size_t>(bytes.size()));
    bytes.truncate(count > 0 ? count : 0);
    return bytes;
}

void PseudoTerminal::write(const QByteArray &bytes)
{
    [[maybe_unused]] const ssize_t taken =
        ::write(m_master, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}
