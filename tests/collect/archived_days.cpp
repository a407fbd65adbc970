// Makes archives as a station writes them, one file a day with evenly spaced samples from midnight
// on.
//
//   archived_days FOLDER FIRST_DAY DAYS SAMPLES SEED      FIRST_DAY as 2026-03-01, SAMPLES a day

#include "jet/database.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"
#include "tools/trm10c_simulator/autoclave_cycle.h"

#include <QStringList>
#include <cmath>

namespace
{

constexpr int kSecondsPerDay = 86400;

jet::Row sample(std::int32_t number, QDate day, int second,
                const AutoclaveCycle::Readings &readings)
{
    constexpr double kAlarmLimit = 135; // passed now and then on a plateau of 134
    jet::Row row{number};
    bool alarm = false;
    for (const double reading : readings) {
        const double shown = std::round(reading * 10) / 10; // the recorder sends tenths
        row.push_back(shown);
        alarm = alarm || shown > kAlarmLimit;
    }
    row.push_back(alarm ? jet::Value(tabel::kYes) : jet::Value());
    row.push_back(tabel::dateValue(day));
    row.push_back(tabel::timeValue(QTime::fromMSecsSinceStartOfDay(second * 1000)));
    return row;
}

void writeDay(const QString &path, QDate day, int samples, AutoclaveCycle &cycle)
{
    jet::Database database = jet::Database::create(nativePath(path), tabel::dateValue(day),
                                                   {.durability = jet::Durability::Unsynced});
    jet::Table table = database.createTable(tabel::design(), tabel::dateValue(day));
    jet::Transaction transaction(database);
    for (int i = 0; i < samples; ++i) {
        const int second = static_cast<int>(std::int64_t{kSecondsPerDay} * i / samples);
        table.appendRow(sample(i + 1, day, second, cycle.read(std::chrono::seconds(second))));
    }
    transaction.commit();
}

} // namespace

int main(int argc, char **argv)
{
    const QStringList arguments(argv + 1, argv + argc);
    const QDate first = QDate::fromString(arguments.at(1), Qt::ISODate);
    AutoclaveCycle cycle(134, arguments.at(4).toUInt());
    for (int i = 0; i < arguments.at(2).toInt(); ++i) {
        const QDate day = first.addDays(i);
        const QString name = day.toString(QStringLiteral("'arh_'dd.MM.yyyy'_autoclava1.mdb'"));
        writeDay(arguments.at(0) + u'/' + name, day, arguments.at(3).toInt(), cycle);
    }
}
