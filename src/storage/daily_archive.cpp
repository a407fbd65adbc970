// The daily archive of the measurement store.

#include "app/settings/station.h"
#include "platform/durable_file.h"
#include "platform/file_date.h"
#include "platform/operator.h"
#include "storage/failure.h"
#include "storage/measurement_store.h"
#include "storage/storage_names.h"
#include "storage/tabel.h"
#include "storage/texts.h"

void MeasurementStore::arhiveaza_baza_date(const QString &nume)
{
    const bool browserWasOpen = m_station.FormMdbDeschis;
    if (browserWasOpen)
        emit browserMustClose();
    const QString archive =
        m_station.archiveFolder() + archiveName(data_pentru_fisier(m_clock, false, false), nume);
    const std::optional<Failure> failure = attempt([&] { archiveAndEmpty(nume, archive); });
    if (failure) {
        if (failure->number == static_cast<int>(jet::ErrorCode::NoCurrentRecord))
            m_operator.tell(texts::storage::storageEmpty(nume), Operator::Icon::Exclamation);
        else
            m_operator.tell(failure->text());
        return;
    }
    if (browserWasOpen)
        emit browserMayReopen();
}

void MeasurementStore::archiveAndEmpty(const QString &nume, const QString &archive) const
{
    const QString storage = m_station.storagePath(nume);
    if (!isStorageFile(nume))
        throw RuntimeError(RuntimeError::FileNotFound);
    // Opening finishes an interrupted statement, and the transaction keeps others from writing
    // between the copy and the emptying. A file that cannot be opened is still copied: its bytes
    // may be all that is left of the day. A file that another program writes to is not: the copy
    // could hold half of a statement and replace a sound archive of the day.
    std::optional<jet::Database> database;
    std::optional<jet::Transaction> transaction;
    std::exception_ptr notOpened;
    try {
        database.emplace(openStorage(nume));
        transaction.emplace(*database);
    } catch (const jet::Error &error) {
        if (error.code() == jet::ErrorCode::InUse)
            throw;
        notOpened = std::current_exception();
    }
    copyFile(storage, archive);
    if (notOpened)
        std::rethrow_exception(notOpened);

    jet::Table table = database->table(tabel::kName);
    if (!table.records().first())
        throw jet::Error(jet::ErrorCode::NoCurrentRecord, "No current record.");
    table.deleteAll();
    transaction->commit();
}
