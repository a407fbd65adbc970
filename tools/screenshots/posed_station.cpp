#include "tools/screenshots/posed_station.h"
#include "acquisition/form2.h"
#include "app/main_menu.h"
#include "chart/chart_grid.h"
#include "platform/qt_printers.h"
#include "tools/trm10c_simulator/autoclave_cycle.h"

#include <QAction>
#include <QApplication>
#include <QMenuBar>
#include <QPrinter>
#include <cmath>
#include <stdexcept>

using namespace std::chrono_literals;

namespace
{

constexpr QSize kWindowSize(1366, 768);
constexpr double kPlateau = 121; // degrees Celsius
constexpr unsigned kSeed = 7;
constexpr auto kBetweenRows = 60s; // of the live diagrams: most of a sterilisation on 60 rows
constexpr int kRowsSoFar = 42;
constexpr auto kBetweenSamples = 10s; // of the archived day
constexpr int kArchivedSamples = 1000;

void read(AutoclaveCycle &cycle, AutoclaveCycle::Seconds sinceStart, std::vector<Sensor> &sensors)
{
    const AutoclaveCycle::Readings readings = cycle.read(sinceStart);
    for (std::size_t i = 0; i < sensors.size(); ++i)
        sensors[i].value = std::round(readings.at(i) * 10) / 10; // as the recorder sends them
}

} // namespace

void AbsentOperator::tell(const QString &text, Icon)
{
    throw std::runtime_error(text.toStdString());
}

Operator::Answer AbsentOperator::ask(const QString &text)
{
    throw std::runtime_error(text.toStdString());
}

std::unique_ptr<PrintJob> DocumentPrinter::choose()
{
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setOutputFormat(QPrinter::PdfFormat);
    printer->setOutputFileName(m_path);
    return printJobOn(std::move(printer));
}

PosedStation::PosedStation(const QString &folder, const QString &printedPage)
    : m_folder(folder), m_printer(printedPage),
      m_program({folder, QLocale(QLocale::Romanian, QLocale::Romania), m_clock, m_operator, m_shell,
                 m_printer, [] {}})
{
    m_program.start();
    window().showNormal();
    window().resize(kWindowSize);
    settle();
    archiveYesterday();
    drawMorning();
    showMonitoring();
    settle();
}

void PosedStation::choose(const QString &item)
{
    menuItem(*window().menuBar(), item)->trigger();
    settle();
}

void PosedStation::showInstalledFolder(bool installed)
{
    m_program.station().appFolder = installed ? QStringLiteral("/opt/monitor_autoclava") : m_folder;
}

QDate PosedStation::archivedDay() const
{
    return m_clock.now().date().addDays(-1);
}

void PosedStation::archiveYesterday()
{
    const QDateTime today = m_clock.moment;
    const QDateTime begin = wallTime(archivedDay(), QTime(8, 0));
    AutoclaveCycle cycle(kPlateau, kSeed);
    Station &station = m_program.station();
    MeasurementStore store(station, m_operator, m_clock, {.durability = jet::Durability::Unsynced});
    for (int sample = 0; sample < kArchivedSamples; ++sample) {
        const auto sinceStart = sample * kBetweenSamples;
        m_clock.moment = begin.addSecs(sinceStart.count());
        read(cycle, sinceStart, station.sensors);
        store.adauga_inregistrare(station.NumeFisier[0]);
    }
    m_program.archiveStorage();
    m_clock.moment = today;
}

void PosedStation::drawMorning()
{
    const QDateTime now = m_clock.moment;
    AutoclaveCycle cycle(kPlateau, kSeed);
    Station &station = m_program.station();
    MeasurementStore store(station, m_operator, m_clock, {.durability = jet::Durability::Unsynced});
    for (int row = 1; row <= kRowsSoFar; ++row) {
        m_clock.moment = now.addSecs((row - kRowsSoFar) * kBetweenRows.count());
        read(cycle, row * kBetweenRows, station.sensors);
        store.adauga_inregistrare(station.NumeFisier[0]);
        std::size_t sensor = 0;
        for (Diagrama &diagram : station.Diagrame) {
            diagram.chart->setRow(row);
            for (int column = 1; column <= diagram.sensorCount; ++column) {
                diagram.chart->setColumn(column);
                diagram.chart->setData(station.sensors.at(sensor++).value);
            }
        }
    }
}

void PosedStation::showMonitoring()
{
    m_program.station().monitorActive = true; // of the control centre's looks only: nothing samples
    m_program.showControlCentre();
    m_program.controlCentre().scrie_stare_monitor();
}

void settle()
{
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
}
