#include "platform/runtime_error.h"

static const char *standardDescription(RuntimeError::Number number)
{
    switch (number) {
    case RuntimeError::InvalidProcedureCall:
        return "Invalid procedure call or argument";
    case RuntimeError::Overflow:
        return "Overflow";
    case RuntimeError::SubscriptOutOfRange:
        return "Subscript out of range";
    case RuntimeError::TypeMismatch:
        return "Type mismatch";
    case RuntimeError::FileNotFound:
        return "File not found";
    case RuntimeError::DiskFull:
        return "Disk full";
    case RuntimeError::PathFileAccess:
        return "Path/File access error";
    case RuntimeError::PathNotFound:
        return "Path not found";
    case RuntimeError::InvalidPropertyValue:
        return "Invalid property value";
    case RuntimeError::PrinterError:
        return "Printer error";
    case RuntimeError::InvalidPortNumber:
        return "Invalid port number";
    case RuntimeError::PortAlreadyOpen:
        return "Port already open";
    case RuntimeError::InvalidDevice:
        return "The device identifier is invalid or unsupported";
    case RuntimeError::PortNotOpen:
        return "Operation valid only when the port is open";
    }
    return "Application-defined or object-defined error";
}

RuntimeError::RuntimeError(Number number)
    : std::runtime_error(standardDescription(number)), m_number(number)
{
}

RuntimeError::RuntimeError(int number, const QString &description)
    : std::runtime_error(description.toStdString()), m_number(number)
{
}

QString runtimeErrorReport(int number, const QString &description)
{
    return QStringLiteral("Run-time error '%1':\n\n%2").arg(number).arg(description);
}
