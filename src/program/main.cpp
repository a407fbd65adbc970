#include "app/texts.h"
#include "platform/clock.h"
#include "platform/desktop_shell.h"
#include "platform/message_box_operator.h"
#include "platform/qt_printers.h"
#include "program/program.h"
#include "program/station_application.h"

int main(int argc, char **argv)
{
    StationApplication application(argc, argv);
    SystemClock clock;
    MessageBoxOperator op(texts::app::applicationTitle());
    DesktopShell shell;
    QtPrinters printers;
    int exitCode = 0;
    application.guard([&] {
        Program program({QCoreApplication::applicationDirPath(), QLocale::system(), clock, op,
                         shell, printers, [] { QCoreApplication::exit(0); }});
        QObject::connect(&application, &StationApplication::failing, &program, &Program::halt);
        program.start();
        exitCode = application.exec();
    });
    return exitCode;
}
