#include "diagrams/history_date.h"
#include "platform/locale_date_text.h"

#include <QRegularExpression>
#include <algorithm>

namespace
{

constexpr int kFirstYearOfTwoDigits = 1930;

struct DatePart {
    int number;
    qsizetype digits;
};

int fullYear(DatePart year)
{
    if (year.digits > 2)
        return year.number;
    const int inOldCentury = 1900 + year.number;
    return inOldCentury < kFirstYearOfTwoDigits ? inOldCentury + 100 : inOldCentury;
}

std::optional<QDate> dateOf(DatePart year, DatePart month, DatePart day)
{
    if (month.digits > 2 || day.digits > 2)
        return std::nullopt;
    const QDate date(fullYear(year), month.number, day.number);
    return date.isValid() ? std::optional(date) : std::nullopt;
}

std::optional<QDate> numericDate(const QString &text)
{
    const QRegularExpression form(
        QStringLiteral(R"(^\s*(\d{1,4})[\s./-]+(\d{1,2})[\s./-]+(\d{1,4})[\s./]*$)"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const auto part = [&](int group) {
        return DatePart{match.captured(group).toInt(), match.capturedLength(group)};
    };
    const DatePart first = part(1);
    const DatePart second = part(2);
    const DatePart third = part(3);
    if (const auto date = dateOf(third, second, first))
        return date;
    if (const auto date = dateOf(first, second, third))
        return date;
    return dateOf(third, first, second);
}

} // namespace

QString dateSeparator(QDate today, const QLocale &locale)
{
    const QString text = dateText(today, locale);
    const bool namesTheMonth =
        std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.isLetter(); });
    const auto separator =
        std::find_if(text.cbegin(), text.cend(), [](QChar c) { return !c.isDigit(); });
    return namesTheMonth || separator == text.cend() ? QStringLiteral(".") : QString(*separator);
}

std::optional<QDate> typedDate(const QString &text, const QLocale &locale)
{
    if (const auto date = numericDate(text))
        return date;
    const QDate date = locale.toDate(text.trimmed(), QLocale::ShortFormat);
    return date.isValid() ? std::optional(date) : std::nullopt;
}
