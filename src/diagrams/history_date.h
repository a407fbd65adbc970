#pragma once

#include <QDate>
#include <QLocale>
#include <QString>
#include <optional>

/// The date that the operator types for a history diagram.

/// What the system writes between the parts of a date: the first character of today's short date
/// that is no digit; "." when there is none, or when the system writes months as words.
QString dateSeparator(QDate today, const QLocale &locale);

/// The date that a text means, as the prompt asks for it: day, month, year. What that order cannot
/// be is read as year, month, day or month, day, year, then in the system's own short form. Years
/// of two digits lie between 1930 and 2029. Nothing when the text is no date.
std::optional<QDate> typedDate(const QString &text, const QLocale &locale);
