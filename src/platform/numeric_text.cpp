#include "platform/numeric_text.h"
#include "platform/runtime_error.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace
{

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

/// Length of the number at the start of `text`, whose decimal point is "."; 0 when there is none.
/// An exponent without digits does not belong to the number.
qsizetype numberLength(QStringView text)
{
    qsizetype at = 0;
    const auto digits = [&] {
        const qsizetype from = at;
        while (at < text.size() && isDigit(text[at]))
            ++at;
        return at - from;
    };
    const auto sign = [&] {
        if (at < text.size() && (text[at] == QLatin1Char('+') || text[at] == QLatin1Char('-')))
            ++at;
    };
    sign();
    qsizetype mantissaDigits = digits();
    if (at < text.size() && text[at] == QLatin1Char('.')) {
        ++at;
        mantissaDigits += digits();
    }
    if (mantissaDigits == 0)
        return 0;
    const qsizetype mantissaEnd = at;
    if (at < text.size() && text[at].toUpper() == QLatin1Char('E')) {
        ++at;
        sign();
        if (digits() > 0)
            return at;
    }
    return mantissaEnd;
}

/// Nothing when the number is beyond what a double holds; too small a number is 0.
std::optional<double> parseNumber(QStringView text)
{
    const std::string ascii = text.toLatin1().toStdString();
    const char *begin = ascii.data() + (ascii.front() == '+' ? 1 : 0);
    double number = 0;
    const auto result = std::from_chars(begin, ascii.data() + ascii.size(), number);
    if (result.ec != std::errc::result_out_of_range)
        return number;
    const bool tooSmall = text.contains(QLatin1String("E-"), Qt::CaseInsensitive);
    return tooSmall ? std::optional<double>(0) : std::nullopt;
}

} // namespace

double leadingNumber(QStringView text)
{
    QString packed;
    for (const QChar c : text)
        if (c != QLatin1Char(' ') && c != QLatin1Char('\t') && c != QLatin1Char('\n'))
            packed += c;
    // A digit that would take the number beyond what can be held cannot continue it.
    for (qsizetype length = numberLength(packed); length > 0; --length)
        if (const auto number = parseNumber(QStringView(packed).first(length)))
            return *number;
    return 0;
}

QString withDecimalPoint(QStringView text)
{
    return text.trimmed().toString().replace(QLatin1Char(','), QLatin1Char('.'));
}

std::optional<double> typedNumber(QStringView text)
{
    const QString number = withDecimalPoint(text);
    if (number.isEmpty() || numberLength(number) != number.size())
        return std::nullopt;
    return parseNumber(number);
}

double numberFromText(QStringView text)
{
    const std::optional<double> number = typedNumber(text);
    if (!number)
        throw RuntimeError(RuntimeError::TypeMismatch);
    return *number;
}

qint16 toInt16(double number)
{
    // nearbyint follows the default rounding mode of the environment: half to even.
    const double rounded = std::nearbyint(number);
    if (!(rounded >= std::numeric_limits<qint16>::min() &&
          rounded <= std::numeric_limits<qint16>::max()))
        throw RuntimeError(RuntimeError::Overflow);
    return static_cast<qint16>(rounded);
}

qint16 int16FromText(QStringView text)
{
    return toInt16(numberFromText(text));
}

QString fileNumberText(double number)
{
    if (number == 0) // also the negative zero, which is shown without its sign
        return QStringLiteral("0");
    return QString::number(number, 'G', 15);
}

QString numberText(double number, const QLocale &locale)
{
    const QString text = fileNumberText(number);
    const bool comma = locale.decimalPoint() == QLatin1String(",");
    return comma ? QString(text).replace(QLatin1Char('.'), QLatin1Char(',')) : text;
}
