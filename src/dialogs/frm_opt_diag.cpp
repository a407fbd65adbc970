#include "dialogs/frm_opt_diag.h"
#include "app/settings/station.h"
#include "app/texts.h"
#include "dialogs/texts.h"
#include "platform/window_frame.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace
{

constexpr int kNameCharacters = 24; // a storage name is seen whole

struct TabLook {
    QString key;
    QString caption;
    QString tip;
};

TabLook lookOf(OptionTab tab)
{
    switch (tab) {
    case OptionTab::GraphLimits:
        return {QStringLiteral("LimiteGrafic"), texts::dialogs::graphLimitsTab(),
                texts::dialogs::graphLimitsTip()};
    case OptionTab::Alarms:
        return {QStringLiteral("SetAlarme"), texts::dialogs::alarmsTab(),
                texts::dialogs::alarmsTip()};
    case OptionTab::ScanOptions:
        return {QStringLiteral("OptiuniScanare"), texts::dialogs::scanOptionsTab(),
                texts::dialogs::scanOptionsTip()};
    }
    return {};
}

QLabel *plainLabel(const QString &text, QWidget *buddy = nullptr)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(buddy);
    return label;
}

QLineEdit *addBox(QGridLayout &grid, int row, const QString &name, const QString &caption)
{
    auto *box = new QLineEdit;
    box->setObjectName(name);
    grid.addWidget(plainLabel(caption, box), row, 0);
    grid.addWidget(box, row, 1);
    grid.setColumnStretch(2, 1); // a number's box is no wider than a number
    return box;
}

/// A panel that holds frames one below the other.
QWidget *panelOf(std::initializer_list<QWidget *> parts)
{
    auto *panel = new QWidget;
    auto *column = new QVBoxLayout(panel);
    for (QWidget *part : parts)
        column->addWidget(part);
    column->addStretch();
    return panel;
}

} // namespace

frmOptDiag::frmOptDiag(int diagram, Station &station, Settings &settings, const Clock &clock,
                       QSize screenTwips, QWidget *parent)
    : DefaultsDialog(parent), m_options(station, settings, clock, static_cast<std::size_t>(diagram),
                                        [this](const QString &message) { emit refused(message); }),
      m_tabs(new QTabWidget)
{
    setObjectName(QStringLiteral("frmOptDiag%1").arg(diagram + 1));
    setWindowTitle(texts::dialogs::optionsCaption(diagram));
    m_tabs->setObjectName(QStringLiteral("tbsOptions"));
    addTab(OptionTab::GraphLimits, limitsPanel());
    addTab(OptionTab::Alarms, alarmsPanel());
    addTab(OptionTab::ScanOptions,
           scanPanel(diagram, QDir::toNativeSeparators(station.storagePath({}))));
    auto *column = new QVBoxLayout(this);
    column->addWidget(m_tabs);
    column->addLayout(buttonRow());

    OptionBoxes boxes;
    for (int tab = 0; tab < m_tabs->count(); ++tab)
        m_options.afiseaza_tab(static_cast<OptionTab>(tab), boxes);
    fillBoxes(boxes);
    resize(sizeHint());
    centreOnScreen(*this, screenTwips);
}

/// The tabs are added in their order: a tab's index is its OptionTab.
void frmOptDiag::addTab(OptionTab tab, QWidget *panel)
{
    const TabLook look = lookOf(tab);
    const int index = m_tabs->addTab(panel, look.caption);
    panel->setObjectName(QStringLiteral("picOptions_%1").arg(index));
    m_tabs->tabBar()->setTabData(index, look.key);
    m_tabs->setTabToolTip(index, look.tip);
}

QWidget *frmOptDiag::limitsPanel()
{
    auto *frame = new QGroupBox(texts::dialogs::graphLimitsTab());
    auto *grid = new QGridLayout(frame);
    m_limSup = addBox(*grid, 0, QStringLiteral("LimSupText"), texts::app::upperLimit());
    m_limInf = addBox(*grid, 1, QStringLiteral("LimInfText"), texts::app::lowerLimit());
    return panelOf({frame});
}

QWidget *frmOptDiag::alarmsPanel()
{
    auto *frame = new QGroupBox(texts::dialogs::alarmsTab());
    auto *grid = new QGridLayout(frame);
    m_alarmSup = addBox(*grid, 0, QStringLiteral("AlarmSupText"), texts::dialogs::upperAlarm());
    m_alarmInf = addBox(*grid, 1, QStringLiteral("AlarmInfText"), texts::dialogs::lowerAlarm());
    return panelOf({frame});
}

QWidget *frmOptDiag::scanPanel(int diagram, const QString &storageFolder)
{
    auto *interval = new QGroupBox(texts::dialogs::scanInterval());
    auto *row = new QHBoxLayout(interval);
    m_scan = new QLineEdit;
    m_scan->setObjectName(QStringLiteral("ScanText"));
    m_unit = new QComboBox;
    m_unit->setObjectName(QStringLiteral("MasuraTimpCombo"));
    m_unit->addItems(texts::dialogs::intervalUnits());
    row->addWidget(m_scan);
    row->addWidget(m_unit);
    row->addStretch(1);

    auto *databases = new QGroupBox(texts::dialogs::databases());
    auto *grid = new QGridLayout(databases);
    grid->addWidget(plainLabel(texts::dialogs::channelValues(diagram)), 0, 0);
    addStorageNames(*grid, 1);
    QLabel *folder = plainLabel(texts::dialogs::storageFolder(storageFolder));
    folder->setObjectName(QStringLiteral("CaleMdbLabel"));
    grid->addWidget(folder, grid->rowCount(), 0, 1, 2);

    return panelOf({interval, databases, plainLabel(texts::dialogs::sharedOptionsNote())});
}

void frmOptDiag::addStorageNames(QGridLayout &grid, int firstRow)
{
    for (int i = 0; i < static_cast<int>(m_names.size()); ++i) {
        auto *box = new QLineEdit;
        box->setObjectName(QStringLiteral("NumeMdb%1Text").arg(i + 1));
        box->setMinimumWidth(box->fontMetrics().averageCharWidth() * kNameCharacters);
        grid.addWidget(box, firstRow + i, 0);
        if (i > 0) // only the first storage file is ever written
            grid.addWidget(plainLabel(texts::dialogs::unusedName(), box), firstRow + i, 1);
        m_names[static_cast<std::size_t>(i)] = box;
    }
}

void frmOptDiag::selectTab(OptionTab tab)
{
    m_tabs->setCurrentIndex(static_cast<int>(tab));
    focusFirstBox();
}

void frmOptDiag::focusFirstBox()
{
    auto *first = m_tabs->currentWidget()->findChild<QLineEdit *>();
    first->setFocus();
    first->selectAll();
}

OptionTab frmOptDiag::selectedTab() const
{
    return static_cast<OptionTab>(m_tabs->currentIndex());
}

OptionBoxes frmOptDiag::readBoxes() const
{
    OptionBoxes boxes{m_limInf->text(),
                      m_limSup->text(),
                      m_alarmInf->text(),
                      m_alarmSup->text(),
                      m_scan->text(),
                      m_unit->currentIndex(),
                      {}};
    for (std::size_t i = 0; i < m_names.size(); ++i)
        boxes.NumeMdb[i] = m_names[i]->text();
    return boxes;
}

void frmOptDiag::fillBoxes(const OptionBoxes &boxes)
{
    m_limInf->setText(boxes.LimInf);
    m_limSup->setText(boxes.LimSup);
    m_alarmInf->setText(boxes.AlarmInf);
    m_alarmSup->setText(boxes.AlarmSup);
    m_scan->setText(boxes.Scan);
    m_unit->setCurrentIndex(boxes.MasuraTimp);
    for (std::size_t i = 0; i < m_names.size(); ++i)
        m_names[i]->setText(boxes.NumeMdb[i]);
}

void frmOptDiag::runOnSelectedTab(TabAction action)
{
    OptionBoxes boxes = readBoxes();
    (m_options.*action)(selectedTab(), boxes);
    fillBoxes(boxes);
}

void frmOptDiag::cmdSaveDef_Click()
{
    runOnSelectedTab(&DiagramOptions::saveDefaults);
}

void frmOptDiag::cmdRestDef_Click()
{
    runOnSelectedTab(&DiagramOptions::restoreDefaults);
}

void frmOptDiag::cmdApply_Click()
{
    runOnSelectedTab(&DiagramOptions::apply);
}

void frmOptDiag::cmdOK_Click()
{
    OptionBoxes boxes = readBoxes();
    const bool valid = m_options.applyAll(boxes);
    fillBoxes(boxes);
    if (valid)
        accept();
}

void frmOptDiag::keyPressEvent(QKeyEvent *event)
{
    // Ctrl+Tab turns the tabs wherever the focus is, also on a button below them.
    if (event->key() == Qt::Key_Tab && event->modifiers() & Qt::ControlModifier)
        QCoreApplication::sendEvent(m_tabs, event);
    else
        DefaultsDialog::keyPressEvent(event);
}
