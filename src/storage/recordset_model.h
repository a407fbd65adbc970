#pragma once

#include "jet/cursor.h"
#include "jet/database.h"

#include <QAbstractTableModel>
#include <QCache>
#include <optional>
#include <vector>

class QTimer;
struct Station;

/// The records of table Tabel, newest (largest Id) first, for a grid. The file stays open for
/// reading; records are fetched as they are shown, so opening does not depend on their number.
/// Records appended later appear with the next open().
///
/// A failure to fetch a record is signalled once; the cells stay empty. A busy file is retried the
/// next time the cells are shown.
class RecordsetModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    explicit RecordsetModel(const Station &station, QObject *parent = nullptr);
    ~RecordsetModel() override;

    /// Throws jet::Error; the model is then empty.
    void open(const QString &path);
    /// Closes the file and empties the grid.
    void close();

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

signals:
    /// The file could no longer be read: the failure's text.
    void failed(const QString &failure) const;

private slots:
    void retry();

private:
    struct Recordset;

    const jet::Row *fetch(int row) const;
    void fail(const jet::Error &error) const;
    QString text(const jet::Value &value, std::size_t column) const;
    bool isAlarm(const jet::Row &row) const;

    const Station &m_station;
    mutable std::unique_ptr<Recordset> m_recordset;
    QTimer *m_retry;                 ///< runs while the file is busy
    mutable bool m_failed = false;   ///< nothing is read until the next try
    mutable bool m_reported = false; ///< the present failure has been signalled
};
