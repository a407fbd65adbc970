#pragma once

#include "diagrams/history_limits.h"

#include <QDialog>

class QGroupBox;
class QHBoxLayout;
class QLineEdit;

/// The limits of the history charts' value axes. Modeless; it expects to be opened as a locked
/// dialog.
class FrmIstoric : public QDialog
{
    Q_OBJECT
public:
    /// arata_eroare: shows a message in the error window with `caller` disabled meanwhile, and
    /// returns at once.
    using ShowError = std::function<void(QWidget &caller, const QString &message)>;

    /// The dialog stands in the middle of a screen of that size, in twips, and shows the present
    /// limits. Station and settings must outlive it.
    FrmIstoric(Station &station, Settings &settings, ShowError arata_eroare, QSize screenTwips,
               QWidget *parent = nullptr);

    /// Closes the dialog, unless the error window is open over it.
    void reject() override;

signals:
    /// The dialog has closed, whatever the way.
    void closed();

protected:
    void changeEvent(QEvent *event) override;

private:
    QGroupBox *limitsOf(int diagram, QLineEdit *&upper, QLineEdit *&lower, const QString &suffix);
    QHBoxLayout *buttonRow();
    void focusFirstBox();
    void fillBoxes();
    bool cmdApply_Click();
    void cmdOK_Click();
    void cmdSaveDef_Click();
    void cmdRestDef_Click();

    HistoryLimits m_limits;
    QLineEdit *m_supTemp = nullptr;
    QLineEdit *m_infTemp = nullptr;
    QLineEdit *m_supPres = nullptr;
    QLineEdit *m_infPres = nullptr;
};
