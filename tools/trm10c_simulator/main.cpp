#include "platform/runtime_error.h"
#include "platform/scheduler.h"
#include "tools/trm10c_simulator/recorder_line.h"
#include "tools/trm10c_simulator/recorder_simulation.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QMap>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <limits>
#include <stdexcept>

namespace
{

constexpr int kUsageError = 2;

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

const QMap<QString, Fault> &faults()
{
    static const QMap<QString, Fault> kFaults{
        {"none", Fault::None}, {"silent", Fault::Silent},   {"short", Fault::Short},
        {"long", Fault::Long}, {"garbled", Fault::Garbled}, {"slow", Fault::Slow},
        {"late", Fault::Late}, {"vanish", Fault::Vanish}};
    return kFaults;
}

void describeOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        "Simulates a TOHO TRM-10C recorder on a new pseudo-terminal or on a serial port. Prints\n"
        "its port's name on standard output, and requests and replies on standard error. Ends\n"
        "with Ctrl+C, or when the line vanishes.");
    parser.addHelpOption();
    parser.addOptions({
        {"port",
         "Serial port to use at 9600 baud, such as ttyS1 or COM2, wired to the station's port.",
         "name"},
        {"link", "Symbolic link to create to the pseudo-terminal; replaces an old link.", "name"},
        {"seed", "Seed of the noise: the same seed gives the same readings.", "number", "1"},
        {"plateau", "Sterilisation temperature in degrees Celsius, 105 to 140.", "degrees", "121"},
        {"speed", "Simulated seconds per second, above 0.", "factor", "1"},
        {"fault", "Fault to simulate: " + QStringList(faults().keys()).join(", ") + ".", "kind",
         "none"},
        {"fault-at", "Exchange that fails, counted from 1; 0 means every exchange.", "n", "0"},
    });
}

double numberIn(const QCommandLineParser &parser, const QString &option, double least, double most)
{
    bool isNumber = false;
    const double number = parser.value(option).toDouble(&isNumber);
    if (!isNumber || !(number >= least && number <= most))
        throw UsageError(QStringLiteral("--%1 needs a number from %2 to %3, not \"%4\"")
                             .arg(option)
                             .arg(least, 0, 'g', 12)
                             .arg(most, 0, 'g', 12)
                             .arg(parser.value(option))
                             .toStdString());
    return number;
}

unsigned wholeNumber(const QCommandLineParser &parser, const QString &option)
{
    const double number = numberIn(parser, option, 0, std::numeric_limits<unsigned>::max());
    if (number != std::floor(number))
        throw UsageError("--" + option.toStdString() + " needs a whole number");
    return static_cast<unsigned>(number);
}

RecorderSettings settingsFrom(const QCommandLineParser &parser)
{
    const QStringList extra = parser.positionalArguments();
    if (!extra.isEmpty())
        throw UsageError("unexpected argument: " + extra.first().toStdString());
    const QString fault = parser.value("fault");
    if (!faults().contains(fault))
        throw UsageError("--fault needs one of " +
                         QStringList(faults().keys()).join(", ").toStdString() + ", not \"" +
                         fault.toStdString() + "\"");
    RecorderSettings settings;
    settings.seed = wholeNumber(parser, "seed");
    settings.plateau = numberIn(parser, "plateau", 105, 140);
    settings.speed = numberIn(parser, "speed", 0.001, 100'000);
    settings.fault = faults().value(fault);
    settings.faultAt = wholeNumber(parser, "fault-at");
    return settings;
}

RecorderLine serialPort(const QString &port)
{
    try {
        return openSerialPort(port);
    } catch (const RuntimeError &error) {
        throw std::runtime_error((port + ": " + error.description()).toStdString());
    }
}

RecorderLine lineFrom(const QCommandLineParser &parser)
{
    if (!parser.isSet("port"))
        return openPseudoTerminal(parser.value("link"));
    if (parser.isSet("link"))
        throw UsageError("--link names a pseudo-terminal; it cannot be used with --port");
    return serialPort(parser.value("port"));
}

int run(const QCommandLineParser &parser)
{
    const SystemClock clock;
    QtScheduler scheduler(*QCoreApplication::instance());
    const RecorderLine end = lineFrom(parser);
    RecorderSimulation recorder(settingsFrom(parser), *end.line, clock, scheduler);
    QObject::connect(&recorder, &RecorderSimulation::reported, [](const QString &line) {
        std::fprintf(stderr, "%s\n", line.toLocal8Bit().constData());
    });
    QObject::connect(&recorder, &RecorderSimulation::vanished, qApp, &QCoreApplication::quit);
    std::printf("%s\n", end.portName.toLocal8Bit().constData());
    std::fflush(stdout);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("trm10c_simulator");
    QCommandLineParser parser;
    describeOptions(parser);
    parser.process(application);
    try {
        return run(parser);
    } catch (const UsageError &error) {
        std::fprintf(stderr, "trm10c_simulator: %s\nTry --help.\n", error.what());
        return kUsageError;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "trm10c_simulator: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
