#include "storage/recordset_model.h"
#include "app/settings/station.h"
#include "jet/value_conversion.h"
#include "platform/locale_date_text.h"
#include "platform/numeric_text.h"
#include "storage/failure.h"
#include "storage/measurement_store.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"
#include "storage/texts.h"

#include <QColor>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace
{

using namespace std::chrono_literals;

// The thread that draws the grid also takes the samples: it waits only briefly for a busy file and
// retries after a pause.
constexpr auto kBusyWait = 200ms;
constexpr auto kBusyPause = 1s;
constexpr int kCachedRows = 1024; // a few screens in both directions
const QColor kAlarmBackground(255, 221, 204);
const QColor kAlarmText(128, 32, 0);

QString dateTimeOfValue(jet::DateTime value, const jet::Text &column, const QLocale &locale)
{
    const QDateTime moment = momentFromDays(value.days);
    // Data has no time of day and Ora no date; each shows its own half, at midnight too.
    if (column == tabel::kData)
        return dateText(moment.date(), locale);
    if (column == tabel::kOra)
        return timeText(moment.time(), locale);
    return dateTimeText(moment, locale);
}

bool isAlignedRight(jet::ColumnType type)
{
    return type != jet::ColumnType::Text && type != jet::ColumnType::Memo &&
           type != jet::ColumnType::Binary && type != jet::ColumnType::Ole &&
           type != jet::ColumnType::Guid && type != jet::ColumnType::Block;
}

} // namespace

/// The open file and the records found so far.
struct RecordsetModel::Recordset {
    Recordset(const QString &path, const jet::OpenOptions &options)
        : database(jet::Database::open(nativePath(path), options)),
          table(database.table(tabel::kName)), design(table.design()),
          count(static_cast<int>(table.recordCount())),
          walk(table.sortedBy(tabel::kId, jet::Order::Descending))
    {
    }

    jet::Database database;
    jet::Table table;
    jet::TableDesign design;
    int count;
    jet::Cursor walk; ///< finds the places of the records, in their order, as far as needed
    std::vector<jet::RowPointer> found;
    QCache<int, jet::Row> rows{kCachedRows};
};

RecordsetModel::RecordsetModel(const Station &station, QObject *parent)
    : QAbstractTableModel(parent), m_station(station), m_retry(new QTimer(this))
{
    m_retry->setSingleShot(true);
    m_retry->setInterval(kBusyPause);
    connect(m_retry, &QTimer::timeout, this, &RecordsetModel::retry);
}

RecordsetModel::~RecordsetModel() = default;

void RecordsetModel::open(const QString &path)
{
    close();
    jet::OpenOptions options = MeasurementStore::openOptions();
    options.readOnly = true;
    options.lockTimeout = kBusyWait;
    auto recordset = std::make_unique<Recordset>(path, options);
    beginResetModel();
    m_recordset = std::move(recordset);
    m_failed = m_reported = false;
    endResetModel();
}

void RecordsetModel::close()
{
    if (!m_recordset)
        return;
    beginResetModel();
    m_recordset.reset();
    endResetModel();
}

int RecordsetModel::rowCount(const QModelIndex &parent) const
{
    return m_recordset && !parent.isValid() ? m_recordset->count : 0;
}

int RecordsetModel::columnCount(const QModelIndex &parent) const
{
    return m_recordset && !parent.isValid() ? static_cast<int>(m_recordset->design.columns.size())
                                            : 0;
}

const jet::Row *RecordsetModel::fetch(int row) const
{
    Recordset &set = *m_recordset;
    if (const jet::Row *cached = set.rows.object(row))
        return cached;
    if (m_failed)
        return nullptr;
    try {
        // Reading on to the end of a day takes long, but delays no sample: this thread stores them.
        const jet::Snapshot snapshot(set.database);
        const auto wanted = static_cast<std::size_t>(row);
        while (set.found.size() <= wanted && set.walk.next())
            set.found.push_back(set.walk.bookmark());
        if (set.found.size() <= wanted)
            return nullptr; // deleted by another program meanwhile
        set.rows.insert(row, new jet::Row(set.table.record(set.found[wanted])));
        m_reported = false;
        return set.rows.object(row);
    } catch (const jet::Error &error) {
        if (error.code() == jet::ErrorCode::RecordDeleted)
            return nullptr;
        fail(error);
        return nullptr;
    }
}

void RecordsetModel::fail(const jet::Error &error) const
{
    m_failed = true;
    if (error.code() == jet::ErrorCode::InUse)
        m_retry->start();
    if (!std::exchange(m_reported, true))
        emit failed(currentFailure().text());
}

/// The grid fetches its rows again: those that a busy file left empty are filled.
void RecordsetModel::retry()
{
    m_failed = false;
    if (rowCount() > 0)
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

QString RecordsetModel::text(const jet::Value &value, std::size_t column) const
{
    const QLocale &locale = m_station.locale;
    if (const auto *moment = std::get_if<jet::DateTime>(&value))
        return dateTimeOfValue(*moment, m_recordset->design.columns[column].name, locale);
    if (const auto *number = std::get_if<double>(&value))
        return numberText(*number, locale);
    if (jet::isNull(value))
        return {};
    return QString::fromStdString(jet::defaultText(value));
}

bool RecordsetModel::isAlarm(const jet::Row &row) const
{
    const std::vector<jet::ColumnDesign> &columns = m_recordset->design.columns;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].name != tabel::kAlarma)
            continue;
        if (const auto *flag = std::get_if<bool>(&row[i]))
            return *flag;
        // A column designed elsewhere may hold a default such as "No" where there is no alarm.
        const auto *mark = std::get_if<jet::Text>(&row[i]);
        return mark && *mark == tabel::kYes;
    }
    return false;
}

QVariant RecordsetModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !m_recordset)
        return {};
    const auto column = static_cast<std::size_t>(index.column());
    switch (role) {
    case Qt::DisplayRole:
        if (const jet::Row *row = fetch(index.row()))
            return text((*row)[column], column);
        return {};
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(isAlignedRight(m_recordset->design.columns[column].type)
                                       ? Qt::AlignRight | Qt::AlignVCenter
                                       : Qt::AlignHCenter | Qt::AlignVCenter);
    case Qt::BackgroundRole:
    case Qt::ForegroundRole: {
        const jet::Row *row = fetch(index.row());
        if (!row || !isAlarm(*row))
            return {};
        return role == Qt::BackgroundRole ? kAlarmBackground : kAlarmText;
    }
    default:
        return {};
    }
}

QVariant RecordsetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || !m_recordset)
        return {};
    const QString caption = QString::fromStdU16String(
        m_recordset->design.columns[static_cast<std::size_t>(section)].name);
    const auto sensor =
        std::find_if(m_station.sensors.cbegin(), m_station.sensors.cend(),
                     [&](const Sensor &candidate) { return candidate.label == caption; });
    return sensor == m_station.sensors.cend() ? caption : sensor->name;
}
