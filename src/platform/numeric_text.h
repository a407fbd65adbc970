#pragma once

#include <QLocale>
#include <QString>
#include <optional>

/// The ways in which the station reads and writes numbers as text.

/// The number at the start of a text, whatever the locale: blanks, tabs and line feeds anywhere are
/// skipped, then an optional sign, digits with "." as the decimal point, an optional exponent.
/// Reading stops at the first character that cannot continue the number; 0 when there is none.
double leadingNumber(QStringView text);

/// The number that a whole text is, as an operator types or pastes it: blanks of any kind around it
/// do not count, "." and "," are both the decimal separator. Nothing for any other text, also for a
/// number beyond what a double holds.
std::optional<double> typedNumber(QStringView text);

/// How a typed number is shown and saved: without the blanks around it, "." for ",".
QString withDecimalPoint(QStringView text);

/// typedNumber of a text that has to be one. Throws RuntimeError 13.
double numberFromText(QStringView text);

/// numberFromText rounded half to even into 16 bits. Throws RuntimeError 13, or 6 beyond 16 bits.
qint16 int16FromText(QStringView text);

/// A number rounded half to even into 16 bits. Throws RuntimeError 6 beyond 16 bits.
qint16 toInt16(double number);

/// Default text of a number: up to 15 significant digits and the locale's decimal separator, as far
/// as numberFromText reads it: "," where the locale has it, otherwise ".".
QString numberText(double number, const QLocale &locale);

/// The same with ".", as files need it.
QString fileNumberText(double number);
