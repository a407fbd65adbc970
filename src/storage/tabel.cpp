#include "storage/tabel.h"
#include "app/settings/channels.h"
#include "platform/clock.h"

namespace tabel
{

jet::IndexDesign primaryIndex()
{
    jet::IndexDesign index;
    index.name = kPrimaryIndex;
    index.columns = {{kId, false}};
    index.primary = true;
    index.unique = true;
    return index;
}

jet::Text sensorColumn(int channel)
{
    return channels::storageColumn(channel).toStdU16String();
}

jet::TableDesign design()
{
    jet::TableDesign table;
    table.name = kName;
    const auto add = [&](const jet::Text &name, jet::ColumnType type, std::uint16_t size = 0) {
        jet::ColumnDesign column;
        column.name = name;
        column.type = type;
        column.size = size;
        table.columns.push_back(column);
    };
    add(kId, jet::ColumnType::Long);
    for (int channel = 1; channel <= channels::kCount; ++channel)
        add(sensorColumn(channel), jet::ColumnType::Double);
    add(kAlarma, jet::ColumnType::Text, 10);
    add(kData, jet::ColumnType::DateTime);
    add(kOra, jet::ColumnType::DateTime);
    table.indexes = {primaryIndex()};
    return table;
}

jet::DateTime dateValue(QDate date)
{
    return {static_cast<double>(zeroDateTime().date().daysTo(date))};
}

jet::DateTime timeValue(QTime time)
{
    constexpr double kSecondsPerDay = 86400;
    return {(time.hour() * 3600 + time.minute() * 60 + time.second()) / kSecondsPerDay};
}

jet::DateTime momentValue(const QDateTime &moment)
{
    return {dateValue(moment.date()).days + timeValue(moment.time()).days};
}

} // namespace tabel
