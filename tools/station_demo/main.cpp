// The station without a display: the same windows on the offscreen platform take twelve samples
// through their own handlers; then the stored rows are read back from the file.

#include "acquisition/form2.h"
#include "app/main_menu.h"
#include "jet/database.h"
#include "jet/value_conversion.h"
#include "platform/operator.h"
#include "platform/qt_printers.h"
#include "platform/shell.h"
#include "program/program.h"
#include "program/station_application.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"

#include <QAction>
#include <QDir>
#include <QMenuBar>
#include <QTimer>
#include <cstdio>

using namespace std::chrono_literals;

namespace
{

constexpr int kSamples = 12;
constexpr auto kPatience = 60s;
constexpr QSize kWindowSize(1280, 860);

void print(const QString &text)
{
    std::printf("%s\n", qUtf8Printable(text));
    std::fflush(stdout);
}

/// A demonstration runs unattended: messages are printed, questions answered with No.
class PrintingOperator final : public Operator
{
public:
    void tell(const QString &text, Icon) override { print(QStringLiteral("Message: ") + text); }
    Answer ask(const QString &text) override
    {
        print(QStringLiteral("Question: ") + text + QStringLiteral(" -> No"));
        return Answer::No;
    }
};

class PrintingShell final : public Shell
{
public:
    void open(const QString &path, Window) override { print(QStringLiteral("Opens ") + path); }
};

QString textOf(const jet::Value &value)
{
    return QString::fromStdString(jet::defaultText(value));
}

/// Reads the stored samples back from the file.
void printNewestRows(const QString &path)
{
    jet::OpenOptions options;
    options.readOnly = true;
    const jet::Database database = jet::Database::open(nativePath(path), options);
    const jet::Table table = database.table(tabel::kName);
    print(QStringLiteral("Table Tabel of %1 holds %2 rows; the newest:")
              .arg(path)
              .arg(table.recordCount()));
    jet::Cursor records = table.byIndex(tabel::kPrimaryIndex, jet::Order::Descending);
    for (int shown = 0; shown < kSamples && records.next(); ++shown) {
        QStringList columns;
        for (const jet::Value &value : records.row())
            columns += textOf(value).leftJustified(8);
        print(columns.join(QLatin1Char(' ')));
    }
}

/// Returns the program's exit code.
int takeSamples(StationApplication &application, const QString &folder)
{
    SystemClock clock;
    PrintingOperator op;
    PrintingShell shell;
    QtPrinters printers;
    Program program(
        {folder, QLocale::system(), clock, op, shell, printers, [] { QCoreApplication::exit(0); }});
    QObject::connect(&application, &StationApplication::failing, &program, &Program::halt);

    int stored = 0;
    QObject::connect(&program, &Program::sampleStored, &program, [&](int id) {
        print(QStringLiteral("Sample %1 of %2 stored, Id %3").arg(++stored).arg(kSamples).arg(id));
        if (stored < kSamples)
            return;
        const QString picture = folder + QStringLiteral("/img/main_window.png");
        if (program.window().grab().save(picture))
            print(QStringLiteral("Picture of the main window: ") + picture);
        else
            print(QStringLiteral("The picture could not be saved as ") + picture);
        program.controlCentre().StopMonCommand_Click();
        menuItem(*program.window().menuBar(), QStringLiteral("ExitProg"))->trigger();
    });
    QTimer::singleShot(kPatience, &program, [] {
        print(QStringLiteral("The samples did not come in time."));
        QCoreApplication::exit(EXIT_FAILURE);
    });

    program.start();
    // One sample a second, whatever the settings say.
    program.station().Diagrame[0].interval_scanare = 1;
    program.station().Diagrame[0].masura_interval = 0;
    program.window().showNormal();
    program.window().resize(kWindowSize);
    program.showControlCentre();
    program.controlCentre().StartMonCommand_Click();
    const int exitCode = application.exec();
    printNewestRows(program.station().storagePath(program.station().NumeFisier[0]));
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    StationApplication application(argc, argv);
    application.showReport = [](const QString &) {}; // standard error has it already
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        std::fprintf(stderr, "usage: station_demo STATION_FOLDER\n");
        return 2;
    }
    const QString folder = QDir(arguments[1]).absolutePath();
    int exitCode = EXIT_FAILURE;
    application.guard([&] { exitCode = takeSamples(application, folder); });
    return exitCode;
}
