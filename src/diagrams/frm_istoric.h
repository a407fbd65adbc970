#pragma once

#include "app/defaults_dialog.h"
#include "diagrams/history_limits.h"

class QGroupBox;
class QLineEdit;

/// The limits of the history charts' value axes.
class FrmIstoric : public DefaultsDialog
{
    Q_OBJECT
public:
    /// The dialog is centred on a screen of that size, in twips, and shows the present
    /// limits. Station and settings must outlive it.
    FrmIstoric(Station &station, Settings &settings, QSize screenTwips, QWidget *parent = nullptr);

protected:
    void cmdSaveDef_Click() override;
    void cmdRestDef_Click() override;
    void cmdOK_Click() override;
    void cmdApply_Click() override;
    void focusFirstBox() override;

private:
    QGroupBox *limitsOf(int diagram, QLineEdit *&upper, QLineEdit *&lower, const QString &suffix);
    void fillBoxes();
    bool takeEntry();

    HistoryLimits m_limits;
    QLineEdit *m_supTemp = nullptr;
    QLineEdit *m_infTemp = nullptr;
    QLineEdit *m_supPres = nullptr;
    QLineEdit *m_infPres = nullptr;
};
