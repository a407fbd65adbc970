#pragma once

#include <QWidget>

class QPushButton;
class QTableView;
class RecordsetModel;
struct Station;

/// The database browser: the records of the current storage file, newest first. It never changes
/// the file. Selected cells are copied with Ctrl+C, columns separated by tabs.
///
/// While it is loaded Station::FormMdbDeschis is set and the file is held open; the repair and the
/// archive close the window first.
class FormMdb : public QWidget
{
    Q_OBJECT
public:
    /// The station must outlive the window.
    explicit FormMdb(Station &station, QWidget *parent = nullptr);

    /// Lays out the grid above the refresh button.
    void aranjare();

    /// The size in which it opens.
    QSize sizeHint() const override;

    /// The window has come to the front: the first time it loads the grid.
    void onActivated();

    /// Reloads the grid. A failure leaves it empty and is reported through failed().
    void sortare();

signals:
    /// The file could not be read: the failure's text. Connect it queued: the message box must
    /// not open within the call, as the window may be closed behind it.
    void failed(const QString &failure);
    void closed(); ///< unloaded, the file closed; destruction follows

protected:
    void resizeEvent(QResizeEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void fitColumns();
    void copySelection() const;

    Station &m_station;
    RecordsetModel *m_data;
    QTableView *m_grid;
    QPushButton *m_refresh;
    bool m_firstData = true; ///< the data have not been loaded yet
};
