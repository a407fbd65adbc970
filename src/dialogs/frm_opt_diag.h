#pragma once

#include "app/defaults_dialog.h"
#include "dialogs/diagram_options.h"

class QComboBox;
class QGridLayout;
class QLineEdit;
class QTabWidget;

/// The options of one diagram: graph limits, alarms, scan options. One class serves both diagrams
/// under the names frmOptDiag1 and frmOptDiag2.
class frmOptDiag : public DefaultsDialog
{
    Q_OBJECT
public:
    /// `diagram`: index into the diagram table, 0 or 1. The dialog is centred on a screen of that
    /// size, in twips; all tabs are filled from memory. Station, settings and clock must
    /// outlive it.
    frmOptDiag(int diagram, Station &station, Settings &settings, const Clock &clock,
               QSize screenTwips, QWidget *parent = nullptr);

    /// Selects the tab and gives its first box the focus.
    void selectTab(OptionTab tab);

protected:
    void cmdSaveDef_Click() override;
    void cmdRestDef_Click() override;
    void cmdOK_Click() override;
    void cmdApply_Click() override;
    void focusFirstBox() override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void addTab(OptionTab tab, QWidget *panel);
    QWidget *limitsPanel();
    QWidget *alarmsPanel();
    QWidget *scanPanel(int diagram, const QString &storageFolder);
    void addStorageNames(QGridLayout &grid, int firstRow);
    OptionTab selectedTab() const;
    OptionBoxes readBoxes() const;
    void fillBoxes(const OptionBoxes &boxes);
    using TabAction = void (DiagramOptions::*)(OptionTab tab, OptionBoxes &boxes);
    void runOnSelectedTab(TabAction action);

    DiagramOptions m_options;
    QTabWidget *m_tabs;
    QLineEdit *m_limSup = nullptr;
    QLineEdit *m_limInf = nullptr;
    QLineEdit *m_alarmSup = nullptr;
    QLineEdit *m_alarmInf = nullptr;
    QLineEdit *m_scan = nullptr;
    QComboBox *m_unit = nullptr;
    std::array<QLineEdit *, 4> m_names{};
};
