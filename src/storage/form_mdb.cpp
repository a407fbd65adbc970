#include "storage/form_mdb.h"
#include "app/settings/station.h"
#include "storage/failure.h"
#include "storage/recordset_model.h"
#include "storage/texts.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>
#include <utility>

namespace
{

constexpr int kMargin = 8; // pixels
constexpr QSize kPreferredSize(860, 480);

QTableView *makeGrid(QWidget *parent, QAbstractItemModel *model)
{
    auto *grid = new QTableView(parent);
    grid->setObjectName(QStringLiteral("DBGrid1"));
    grid->setModel(model);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setWordWrap(false);
    // Rows of one height need not be measured: the grid opens at once, however long it is.
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 6);
    grid->verticalHeader()->hide();
    grid->horizontalHeader()->setHighlightSections(false);
    grid->horizontalHeader()->setResizeContentsPrecision(0); // only what is shown is measured
    return grid;
}

} // namespace

FormMdb::FormMdb(Station &station, QWidget *parent)
    : QWidget(parent), m_station(station), m_data(new RecordsetModel(station, this)),
      m_grid(makeGrid(this, m_data)), m_refresh(new QPushButton(texts::storage::refresh(), this))
{
    setObjectName(QStringLiteral("FormMdb"));
    setWindowTitle(texts::storage::browserCaption());
    m_data->setObjectName(QStringLiteral("Data1"));
    m_refresh->setObjectName(QStringLiteral("cmdRefresh"));
    setFocusProxy(m_grid);
    connect(m_refresh, &QPushButton::clicked, this, &FormMdb::sortare);
    // The grid itself would copy one cell only.
    auto *copy = new QShortcut(QKeySequence::Copy, m_grid);
    copy->setContext(Qt::WidgetShortcut);
    connect(copy, &QShortcut::activated, this, &FormMdb::copySelection);
    connect(m_data, &RecordsetModel::failed, this, &FormMdb::failed);
    aranjare();
    m_station.FormMdbDeschis = true;
}

QSize FormMdb::sizeHint() const
{
    return kPreferredSize;
}

void FormMdb::aranjare()
{
    const QSize button = m_refresh->sizeHint();
    const int buttonTop = height() - button.height() - kMargin;
    m_grid->setGeometry(0, 0, width(), std::max(0, buttonTop - kMargin));
    m_refresh->setGeometry((width() - button.width()) / 2, buttonTop, button.width(),
                           button.height());
}

void FormMdb::sortare()
{
    const auto failure =
        attempt([this] { m_data->open(m_station.storagePath(m_station.NumeFisier[0])); });
    if (failure) {
        emit failed(failure->text());
        return;
    }
    fitColumns();
    m_grid->scrollToTop();
}

void FormMdb::fitColumns()
{
    // The width of what is shown now, with room for a digit more.
    m_grid->resizeColumnsToContents();
    const int room = m_grid->fontMetrics().horizontalAdvance(QLatin1Char('0')) * 2;
    for (int column = 0; column < m_data->columnCount(); ++column)
        m_grid->setColumnWidth(column, m_grid->columnWidth(column) + room);
}

void FormMdb::copySelection() const
{
    QItemSelection selection = m_grid->selectionModel()->selection();
    QModelIndexList cells = selection.indexes();
    std::sort(cells.begin(), cells.end()); // by row, then by column
    QString text;
    for (qsizetype i = 0; i < cells.size(); ++i) {
        if (i > 0)
            text += QLatin1Char(cells[i].row() == cells[i - 1].row() ? '\t' : '\n');
        text += cells[i].data().toString();
    }
    QApplication::clipboard()->setText(text);
}

void FormMdb::onActivated()
{
    if (std::exchange(m_firstData, false))
        sortare();
}

void FormMdb::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    aranjare();
}

void FormMdb::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F5 && !event->isAutoRepeat())
        sortare();
    else
        QWidget::keyReleaseEvent(event);
}

void FormMdb::closeEvent(QCloseEvent *event)
{
    m_data->close();
    m_station.FormMdbDeschis = false;
    event->accept();
    emit closed();
}
