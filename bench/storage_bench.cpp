// The database browser and the daily archive on a full day of 86,400 samples, each beside the plain
// work it cannot do without, in the same run; ends with 1 beyond a limit.

#include "app/settings/station.h"
#include "bench/painted.h"
#include "bench/report.h"
#include "jet/database.h"
#include "platform/durable_file.h"
#include "platform/operator.h"
#include "storage/form_mdb.h"
#include "storage/measurement_store.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"

#include <QApplication>
#include <QDir>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <cstdio>

namespace
{

constexpr int kDay = 86400;

class PrintingOperator final : public Operator
{
public:
    void tell(const QString &text, Icon) override { std::printf("%s\n", qUtf8Printable(text)); }
    Answer ask(const QString &) override { return Answer::Cancel; }
};

void fillDay(const QString &path)
{
    const QDateTime day = wallTime(QDate(2026, 3, 7), QTime(0, 0));
    createStorageFile(path, day);
    jet::Database database = jet::Database::open(nativePath(path));
    jet::Transaction transaction(database);
    jet::Table table = database.table(tabel::kName);
    for (int i = 0; i < kDay; ++i) {
        jet::Row row{std::int32_t(i + 1)};
        for (int sensor = 0; sensor < 6; ++sensor)
            row.emplace_back(121.0 + (i + sensor) % 10 / 10.0);
        row.emplace_back(i % 1000 == 0 ? jet::Value(tabel::kYes) : jet::Value());
        row.emplace_back(tabel::dateValue(day.date()));
        row.emplace_back(tabel::timeValue(day.addSecs(i).time()));
        table.appendRow(std::move(row));
    }
    transaction.commit();
}

double readWholeTable(const QString &path)
{
    Stopwatch watch;
    const jet::Database database = jet::Database::open(nativePath(path), {.readOnly = true});
    jet::Cursor records = database.table(tabel::kName).records();
    jet::Row row;
    int rows = 0;
    while (records.next()) {
        records.read(row);
        ++rows;
    }
    return rows == kDay ? watch.milliseconds() : -1;
}

/// The result is the time until the first rows are painted.
double openBrowser(FormMdb &browser)
{
    browser.resize(1200, 700);
    return untilPainted(browser, [&] {
        browser.show();
        browser.sortare();
    });
}

QScrollBar &scrollBar(const FormMdb &browser)
{
    return *browser.findChild<QTableView *>()->verticalScrollBar();
}

double jumpToTheEnd(Station &station)
{
    FormMdb browser(station);
    openBrowser(browser);
    QScrollBar &bar = scrollBar(browser);
    return untilPainted(browser, [&] { bar.setValue(bar.maximum()); });
}

void measureBrowser(Report &report, Station &station, const QString &path)
{
    FormMdb browser(station);
    const double opened = openBrowser(browser);
    QScrollBar &bar = scrollBar(browser);
    double longest = 0;
    constexpr int kSteps = 100;
    for (int step = 1; step <= kSteps; ++step)
        longest = std::max(longest, untilPainted(browser, [&] {
                               bar.setValue(int(qint64(bar.maximum()) * step / kSteps));
                           }));
    const double whole = readWholeTable(path);
    report.atMost("browser: opened to the first rows painted", opened, "ms", 150);
    report.ratio("browser: opened to the first rows painted", opened, "reading the whole table",
                 whole, 4.0);
    report.atMost("browser: slowest of 100 scroll steps to the end", longest, "ms", 16);
    browser.close();
    report.ratio("browser: one step from the first rows to the last", jumpToTheEnd(station),
                 "reading the whole table", whole, 1.0);
}

void measureArchive(Report &report, MeasurementStore &store, const Station &station,
                    const QString &path)
{
    Stopwatch watch;
    copyFile(path, station.appFolder + QStringLiteral("/plain_copy.mdb"));
    const double copy = watch.milliseconds();
    watch.restart();
    store.arhiveaza_baza_date(station.NumeFisier[0]);
    const double archive = watch.milliseconds();
    report.ratio("archive: copied, synced and emptied", archive, "plain synced copy", copy, 3.0);
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    QTemporaryDir folder;
    Station station;
    station.appFolder = folder.path();
    station.NumeFisier[0] = QStringLiteral("autoclava1.mdb");
    QDir(folder.path()).mkpath(QStringLiteral("mdb/arhive"));
    const QString path = station.storagePath(station.NumeFisier[0]);
    fillDay(path);
    PrintingOperator op;
    const SystemClock clock;
    MeasurementStore store(station, op, clock);
    Report report;
    measureBrowser(report, station, path);
    measureArchive(report, store, station, path);
    return report.exitCode();
}
