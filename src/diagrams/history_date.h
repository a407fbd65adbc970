#pragma once

#include <QDate>
#include <QLocale>
#include <QString>
#include <optional>

/// The date that the operator types for a history diagram.

/// The separator of the system's dates: the first character of today's short date that is no digit;
/// "." when there is none, or when the system writes months as words.
QString dateSeparator(QDate today, const QLocale &locale);

/// Parses a date as the prompt asks for it: day, month, year. A text that is no date in this order
/// is tried as year, month, day, then as month, day, year, then in the system's short form. Years
/// of two digits are 1930 to 2029. nullopt for any other text.
std::optional<QDate> typedDate(const QString &text, const QLocale &locale);
