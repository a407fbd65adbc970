#pragma once

#include <QLocale>
#include <QString>

/// The ways in which the station reads and writes numbers as text.

/// The number at the start of a text, whatever the locale: blanks, tabs and line feeds anywhere are
/// skipped, then an optional sign, digits with "." as the decimal point, an optional exponent.
/// Reading stops at the first character that cannot continue the number; 0 when there is none.
double leadingNumber(QStringView text);

/// True when the whole text is one number; "." and "," both count as the decimal separator.
bool isNumericText(QStringView text);

/// The number that a whole text is. Throws RuntimeError 13 when it is not numeric, 6 when it is
/// beyond what a double holds.
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
