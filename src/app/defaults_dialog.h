#pragma once

#include <QDialog>

class QLayout;

/// A dialog whose values can be saved as defaults and restored from them; the error window reports
/// wrong entries. Modeless; it expects to be opened as a locked dialog.
class DefaultsDialog : public QDialog
{
    Q_OBJECT
public:
    using QDialog::QDialog;

    /// Closes the dialog, unless the error window is open over it.
    void reject() override;

signals:
    /// An entry is refused, with the reason. The dialog expects to be disabled until the operator
    /// has read it.
    void refused(const QString &message);

protected:
    /// The five buttons, one call below for each; Enter presses OK. The caller owns the layout.
    QLayout *buttonRow();

    virtual void cmdSaveDef_Click() = 0;
    virtual void cmdRestDef_Click() = 0;
    virtual void cmdOK_Click() = 0;
    virtual void cmdApply_Click() = 0;
    /// Focuses the first box that is shown.
    virtual void focusFirstBox() = 0;

    void changeEvent(QEvent *event) override;
};
