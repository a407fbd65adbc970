#include "platform/line_settings.h"
#include "platform/runtime_error.h"

#include <QStringList>

static LineSettings::Parity parityOf(const QString &letter)
{
    if (letter == QLatin1String("n"))
        return LineSettings::Parity::None;
    if (letter == QLatin1String("e"))
        return LineSettings::Parity::Even;
    if (letter == QLatin1String("o"))
        return LineSettings::Parity::Odd;
    if (letter == QLatin1String("m"))
        return LineSettings::Parity::Mark;
    if (letter == QLatin1String("s"))
        return LineSettings::Parity::Space;
    throw RuntimeError(RuntimeError::InvalidPropertyValue);
}

static LineSettings::StopBits stopBitsOf(const QString &text)
{
    if (text == QLatin1String("1"))
        return LineSettings::StopBits::One;
    if (text == QLatin1String("1.5"))
        return LineSettings::StopBits::OneAndHalf;
    if (text == QLatin1String("2"))
        return LineSettings::StopBits::Two;
    throw RuntimeError(RuntimeError::InvalidPropertyValue);
}

static int numberInRange(const QString &text, int lowest, int highest)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < lowest || number > highest)
        throw RuntimeError(RuntimeError::InvalidPropertyValue);
    return number;
}

void parseLineSettings(const QString &text, LineSettings &settings)
{
    QStringList parts = text.toLower().split(QLatin1Char(','));
    for (QString &part : parts)
        part = part.trimmed();
    if (parts.size() != 4)
        throw RuntimeError(RuntimeError::InvalidPropertyValue);
    LineSettings parsed = settings;
    parsed.baudRate = numberInRange(parts[0], 50, 4'000'000);
    parsed.parity = parityOf(parts[1]);
    parsed.dataBits = numberInRange(parts[2], 5, 8);
    parsed.stopBits = stopBitsOf(parts[3]);
    settings = parsed;
}

QString systemPortName(const QString &port)
{
    bool isNumber = false;
    const int number = port.toInt(&isNumber);
    if (!isNumber)
        return port;
    if (number < 1)
        throw RuntimeError(RuntimeError::InvalidPortNumber);
#ifdef Q_OS_WIN
    return QStringLiteral("COM%1").arg(number);
#else
    return QStringLiteral("ttyS%1").arg(number - 1);
#endif
}
