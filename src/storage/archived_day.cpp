#include "storage/archived_day.h"
#include "jet/database.h"
#include "jet/value_conversion.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>

namespace
{

/// The window must not block for a locked archive.
constexpr std::chrono::milliseconds kLockTimeout{500};

template <typename Number>
double converted(const jet::Value &value, jet::ColumnType type, double (*number)(const Number &),
                 double none)
{
    if (const auto *held = std::get_if<Number>(&value))
        return number(*held);
    const jet::Value result = jet::convertValue(value, type);
    return jet::isNull(result) ? none : number(std::get<Number>(result));
}

double readingOf(const jet::Value &value)
{
    const double reading = converted<double>(
        value, jet::ColumnType::Double, [](const double &number) { return number; },
        std::numeric_limits<double>::quiet_NaN());
    return std::isfinite(reading) ? reading : std::numeric_limits<double>::quiet_NaN();
}

double daysOf(const jet::Value &value)
{
    return converted<jet::DateTime>(
        value, jet::ColumnType::DateTime, [](const jet::DateTime &moment) { return moment.days; },
        0);
}

/// The date of one value and the time of day of another.
double momentOf(const jet::Value &date, const jet::Value &time)
{
    const double day = std::trunc(daysOf(date));
    const double days = daysOf(time);
    const double timeOfDay = std::abs(days - std::trunc(days));
    return day < 0 ? day - timeOfDay : day + timeOfDay;
}

/// Where the wanted columns are in a row, whatever their order in the table.
struct Places {
    explicit Places(const jet::Table &table)
        : date(table.column(tabel::kData)), time(table.column(tabel::kOra))
    {
        for (std::size_t i = 0; i < sensors.size(); ++i)
            sensors[i] = table.column(tabel::sensorColumn(static_cast<int>(i) + 1));
        for (const jet::ColumnDesign &column : table.design().columns)
            if (column.name == tabel::kId && column.type == jet::ColumnType::Long)
                id = table.column(column.name);
    }

    std::array<std::size_t, channels::kCount> sensors{};
    std::size_t date;
    std::size_t time;
    std::optional<std::size_t> id;
};

template <typename Element>
void reorder(std::vector<Element> &elements, const std::vector<std::size_t> &order)
{
    std::vector<Element> ordered;
    ordered.reserve(elements.size());
    for (const std::size_t place : order)
        ordered.push_back(elements[place]);
    elements = std::move(ordered);
}

/// Reused pages need not be in the order of the samples.
void sortById(ArchivedDay &day, const std::vector<std::int32_t> &ids)
{
    if (ids.size() != day.size() || std::is_sorted(ids.begin(), ids.end()))
        return;
    std::vector<std::size_t> order(ids.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t left, std::size_t right) { return ids[left] < ids[right]; });
    reorder(day.moments, order);
    for (std::vector<double> &readings : day.sensors)
        reorder(readings, order);
}

} // namespace

ArchivedDay readArchive(const QString &path)
{
    jet::OpenOptions options;
    options.readOnly = true;
    options.lockTimeout = kLockTimeout;
    const jet::Database database = jet::Database::open(nativePath(path), options);
    const jet::Snapshot snapshot(database);
    const jet::Table table = database.table(tabel::kName);
    const Places places(table);

    ArchivedDay day;
    std::vector<std::int32_t> ids;
    jet::Cursor cursor = table.records();
    for (jet::Row row; cursor.next();) {
        cursor.read(row);
        for (std::size_t i = 0; i < day.sensors.size(); ++i)
            day.sensors[i].push_back(readingOf(row[places.sensors[i]]));
        day.moments.push_back(momentOf(row[places.date], row[places.time]));
        if (places.id)
            if (const auto *id = std::get_if<std::int32_t>(&row[*places.id]))
                ids.push_back(*id);
    }
    sortById(day, ids);
    return day;
}
