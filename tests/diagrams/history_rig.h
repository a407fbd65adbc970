#pragma once

#include "diagrams/history_diagrams.h"
#include "jet/database.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"
#include "tests/diagrams/diagrams_rig.h"

/// History diagrams on the shipped settings, and archives for them.
class HistoryRig : public DiagramsRig
{
protected:
    static constexpr double kDay = 46088; // 7 March 2026, as the database counts days

    HistoryRig() { load(live); }

    QString archive() const { return station.archiveFolder() + kArchive; }

    void writeArchive(const jet::TableDesign &table,
                      const std::vector<jet::Assignments> &records) const
    {
        jet::Database database = jet::Database::create(nativePath(archive()), {kDay},
                                                       {.durability = jet::Durability::Unsynced});
        jet::Transaction transaction(database);
        jet::Table target = database.createTable(table, {kDay});
        for (const jet::Assignments &record : records)
            target.append(record);
        transaction.commit();
    }
    /// Record `id` of a day: sensor n holds 10 * n + id / 100, taken `id` seconds after midnight.
    static jet::Assignments usualRecord(int id)
    {
        jet::Assignments record{{u"Id", std::int32_t(id)},
                                {u"Data", jet::DateTime{kDay}},
                                {u"Ora", jet::DateTime{id / 86400.0}}};
        for (char16_t n = 1; n <= 6; ++n)
            record.emplace_back(jet::Text(u"Senzor") + static_cast<char16_t>(u'0' + n),
                                reading(n, id));
        return record;
    }
    static double reading(int sensor, int id) { return 10 * sensor + id / 100.0; }
    void writeDay(int samples) const
    {
        std::vector<jet::Assignments> records;
        for (int id = 1; id <= samples; ++id)
            records.push_back(usualRecord(id));
        writeArchive(tabel::design(), records);
    }

    static inline const QString kArchive = QStringLiteral("arh_07.03.2026_autoclava1.mdb");

    HistoryDiagrams history{station, settings};
};
