#pragma once

#include <QString>
#include <stdexcept>

/// A failure with the number and description by which the operators' documentation knows it.
/// Whoever can react catches it by number; otherwise it reaches the application, which shows the
/// runtime error report and ends the program.
class RuntimeError : public std::runtime_error
{
public:
    enum Number {
        InvalidProcedureCall = 5,
        Overflow = 6,
        SubscriptOutOfRange = 9,
        TypeMismatch = 13,
        FileNotFound = 53,
        DiskFull = 61,
        PathFileAccess = 75,
        PathNotFound = 76,
        InvalidPropertyValue = 380,
        PrinterError = 482,
        InvalidPortNumber = 8002,
        PortAlreadyOpen = 8005,
        InvalidDevice = 8006,
        PortNotOpen = 8018,
    };

    /// Takes the runtime's own description of the number.
    explicit RuntimeError(Number number);
    RuntimeError(int number, const QString &description);

    int number() const { return m_number; }
    QString description() const { return QString::fromUtf8(what()); }

private:
    int m_number;
};

/// "Run-time error 'N':", an empty line and the description: the text of the runtime error report.
QString runtimeErrorReport(int number, const QString &description);
