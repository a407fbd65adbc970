// The history window on a day of 86,400 samples beside the same charts in Qt Charts.
//
// history_bench               makes the day, runs the three parts in processes of their own (so
//                             that each has its own memory) and compares; ends with 1 when a
//                             promise is broken
// history_bench PART FOLDER   one part: window, charts or peer

#include "app/settings/settings.h"
#include "bench/painted.h"
#include "bench/process_memory.h"
#include "bench/report.h"
#include "chart/chart_view.h"
#include "diagrams/form_ado_chart.h"
#include "diagrams/history_diagrams.h"
#include "diagrams/live_diagrams.h"
#include "jet/database.h"
#include "platform/clock.h"
#include "platform/operator.h"
#include "storage/archived_day.h"
#include "storage/tabel.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProcess>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <cmath>
#include <cstdio>
#include <map>

namespace
{

constexpr int kSamples = 86400;
constexpr int kExcursionAt = 40000;
constexpr double kDay = 46088; // 7 March 2026
constexpr QSize kMain{1280, 900};
constexpr int kWideChart = 4400; // pixels
constexpr int kScrollSteps = 100;

const QString kArchive = QStringLiteral("arh_07.03.2026_autoclava1.mdb");

/// A sterilisation an hour; sensor 1 leaves the curve for one single sample.
double reading(int sensor, int sample)
{
    if (sensor == 0 && sample == kExcursionAt)
        return 148;
    return 70 + 45 * std::sin(sample / 573.0 + sensor) + (sample * 7 + sensor) % 5 * 0.1;
}

void writeDay(const QString &path)
{
    jet::OpenOptions quick;
    quick.durability = jet::Durability::Unsynced;
    jet::Database database =
        jet::Database::create(QFileInfo(path).filesystemAbsoluteFilePath(), {kDay}, quick);
    jet::Transaction transaction(database);
    jet::Table table = database.createTable(tabel::design(), {kDay});
    for (int sample = 0; sample < kSamples; ++sample) {
        jet::Row row{std::int32_t(sample + 1)};
        for (int sensor = 0; sensor < 6; ++sensor)
            row.emplace_back(reading(sensor, sample));
        row.emplace_back(jet::Null{});
        row.emplace_back(jet::DateTime{kDay});
        row.emplace_back(jet::DateTime{sample / double(kSamples)});
        table.appendRow(std::move(row));
    }
    transaction.commit();
}

class Silent final : public Operator
{
public:
    void tell(const QString &text, Icon) override
    {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    }
    Answer ask(const QString &) override { return Answer::Cancel; }
};

/// Line `name value` for the comparing process.
void report(const char *name, double value)
{
    std::printf("%s %.3f\n", name, value);
}

double scrollStep(QScrollBar &bar, QWidget &seen)
{
    Stopwatch watch;
    double slowest = 0;
    for (int step = 1; step <= kScrollSteps; ++step) {
        watch.restart();
        bar.setValue(bar.minimum() + (bar.maximum() - bar.minimum()) / kScrollSteps * step);
        seen.repaint();
        slowest = std::max(slowest, watch.milliseconds());
    }
    return slowest;
}

void runWindow(const QString &folder)
{
    Station station;
    station.appFolder = folder;
    station.locale = QLocale(QLocale::Romanian);
    Silent op;
    const SystemClock clock;
    Settings settings(station, op);
    LiveDiagrams live(station, settings, clock);
    live.loadTables();
    live.loadSettings();
    HistoryDiagrams history(station, settings);
    QMdiArea area;
    area.resize(kMain);
    area.show();
    auto *form = new FormAdoChart(station, history, op, clock);
    area.addSubWindow(form)->show();
    form->load(kMain);
    form->findChild<QLineEdit *>(QStringLiteral("Text1"))->setText(QStringLiteral("07.03.2026"));
    QCoreApplication::processEvents();

    QWidget &viewport = *form->findChild<QWidget *>(QStringLiteral("Frame1Chart1"));
    report("first_paint", untilPainted(*form, [&] { form->Command1_Click(); }));
    report("scroll",
           scrollStep(*form->findChild<QScrollBar *>(QStringLiteral("HScroll1")), viewport));
    report("resident", residentMegabytes());
}

std::array<std::unique_ptr<ChartGrid>, 2> gridsOf(ArchivedDay day)
{
    std::array<std::unique_ptr<ChartGrid>, 2> grids;
    auto readings = day.sensors.begin();
    for (auto &grid : grids) {
        grid = std::move(LiveDiagrams::stationCharts()[0]);
        grid->setRowCount(kSamples);
        for (int column = 1; column <= 3; ++column)
            grid->setColumnData(column, std::move(*readings++));
        grid->fillColumn(4, 10);
        grid->fillColumn(5, 138);
        grid->setValueAxisMaximum(150);
    }
    return grids;
}

/// The blue of the first sensor far above all curves: the single sample is seen.
bool excursionSeen(ChartView &chart)
{
    const QImage picture = chart.image(Qt::white);
    const int top = picture.height() / 20;
    const int right = picture.width() * 3 / 4;
    for (int y = 0; y < top + 8; ++y)
        for (int x = picture.width() / 4; x < right; ++x)
            if (const QRgb pixel = picture.pixel(x, y); qBlue(pixel) > qRed(pixel) + 40)
                return true;
    return false;
}

void runCharts(const QString &folder)
{
    ArchivedDay day = readArchive(folder + QStringLiteral("/mdb/arhive/") + kArchive);
    const double before = residentMegabytes();
    QWidget window;
    window.resize(kMain);
    std::array<QScrollArea *, 2> areas{};
    std::array<std::unique_ptr<ChartGrid>, 2> grids;
    std::array<ChartView *, 2> charts{};
    const double time = untilPainted(window, [&] {
        grids = gridsOf(std::move(day));
        for (std::size_t i = 0; i < 2; ++i) {
            charts[i] = new ChartView(*grids[i]);
            areas[i] = wideInWindow(window, i, charts[i], kWideChart);
        }
        window.show();
    });
    report("first_paint", time);
    report("scroll", scrollStep(*areas[0]->horizontalScrollBar(), *areas[0]->viewport()));
    report("grown", residentMegabytes() - before);
    report("excursion", excursionSeen(*charts[0]));
}

void runPeer(const QString &folder)
{
    const ArchivedDay day = readArchive(folder + QStringLiteral("/mdb/arhive/") + kArchive);
    const double before = residentMegabytes();
    QWidget window;
    window.resize(kMain);
    std::array<QScrollArea *, 2> areas{};
    const double time = untilPainted(window, [&] {
        for (std::size_t i = 0; i < 2; ++i) {
            auto *chart = new QChart;
            for (std::size_t column = 0; column < 5; ++column) {
                QList<QPointF> points;
                points.reserve(kSamples);
                for (std::size_t row = 0; row < kSamples; ++row)
                    points.append({double(row + 1), column < 3    ? day.sensors[3 * i + column][row]
                                                    : column == 3 ? 10.0
                                                                  : 138.0});
                auto *series = new QLineSeries;
                series->replace(points);
                chart->addSeries(series);
            }
            chart->createDefaultAxes();
            areas[i] = wideInWindow(window, i, new QChartView(chart), kWideChart);
        }
        window.show();
    });
    report("first_paint", time);
    report("scroll", scrollStep(*areas[0]->horizontalScrollBar(), *areas[0]->viewport()));
    report("grown", residentMegabytes() - before);
}

using Figures = std::map<QString, double>;

Figures figuresOf(const QString &part, const QString &folder)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), {part, folder});
    process.waitForFinished(-1);
    Figures figures;
    for (const QString &line : QString::fromUtf8(process.readAllStandardOutput()).split('\n'))
        figures[line.section(' ', 0, 0)] = line.section(' ', 1).toDouble();
    return figures;
}

int compare()
{
    const QTemporaryDir folder;
    QDir(folder.path()).mkpath(QStringLiteral("mdb/arhive"));
    QDir(folder.path()).mkpath(QStringLiteral("config"));
    QFile::copy(QStringLiteral(STATION_SHIPPED_CONFIG),
                folder.path() + QStringLiteral("/config/config.ini"));
    writeDay(folder.path() + QStringLiteral("/mdb/arhive/") + kArchive);

    Figures window = figuresOf(QStringLiteral("window"), folder.path());
    Figures charts = figuresOf(QStringLiteral("charts"), folder.path());
    Figures peer = figuresOf(QStringLiteral("peer"), folder.path());
    Report table;
    table.atMost("history: Generare to painted charts", window["first_paint"], "ms", 250);
    table.atMost("history: slowest scroll step", window["scroll"], "ms", 16);
    table.atMost("history: resident memory of the window", window["resident"], "MiB", 150);
    table.ratio("history: a day's charts to the first paint", charts["first_paint"], "Qt Charts",
                peer["first_paint"], 0.2);
    table.ratio("history: memory of a day's charts", charts["grown"], "Qt Charts", peer["grown"],
                0.5, "MiB");
    table.promise("history: an excursion of one sample is seen", charts["excursion"] >= 1);
    return table.exitCode();
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc < 3)
        return compare();
    const QString folder = QString::fromLocal8Bit(argv[2]);
    const QByteArray part = argv[1];
    if (part == "window")
        runWindow(folder);
    else if (part == "charts")
        runCharts(folder);
    else
        runPeer(folder);
    return 0;
}
