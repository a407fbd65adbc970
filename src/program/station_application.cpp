#include "program/station_application.h"
#include "app/texts.h"
#include "platform/message_box_operator.h"
#include "platform/runtime_error.h"
#include "storage/failure.h"

#include <QIcon>
#include <cstdio>
#include <cstdlib>

namespace
{

/// What the runtime calls a failure that has no number of its own.
constexpr int kInternalError = 51;

QString reportOfCurrentException()
{
    try {
        const Failure failure = currentFailure();
        return runtimeErrorReport(failure.number, failure.description);
    } catch (const std::bad_alloc &) {
        return runtimeErrorReport(7, QStringLiteral("Out of memory"));
    } catch (const std::exception &error) {
        return runtimeErrorReport(kInternalError, QStringLiteral("Internal error: ") +
                                                      QString::fromLocal8Bit(error.what()));
    } catch (...) {
        return runtimeErrorReport(kInternalError, QStringLiteral("Internal error"));
    }
}

} // namespace

StationApplication::StationApplication(int &argc, char **argv) : QApplication(argc, argv)
{
    setApplicationName(texts::app::applicationTitle());
    setApplicationVersion(QStringLiteral(STATION_VERSION));
    setWindowIcon(QIcon(QStringLiteral(":/monitor_autoclava.ico")));
    setDesktopFileName(QStringLiteral("monitor_autoclava")); // its entry in the desktop's menus
    showReport = [](const QString &report) {
        MessageBoxOperator(texts::app::applicationTitle()).tell(report, Operator::Icon::Critical);
    };
}

bool StationApplication::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        reportAndEnd();
    }
    return true;
}

void StationApplication::reportAndEnd()
{
    const QString report = reportOfCurrentException();
    std::fprintf(stderr, "%s\n", qUtf8Printable(report));
    // While the box is open other handlers run and may fail for the same reason: one box is enough.
    if (m_ending)
        return;
    m_ending = true;
    emit failing();
    showReport(report);
    // At once, like the runtime does: what is stored is safe in its transactions, and no handler of
    // a program in an unknown state may run again.
    std::fflush(nullptr);
    std::_Exit(EXIT_FAILURE);
}
