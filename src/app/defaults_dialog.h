#pragma once

#include <QDialog>

class QLayout;

/// A dialog of values that may be saved as defaults and restored from them, whose entries are
/// refused in the error window. Modeless; it expects to be opened as a locked dialog.
class DefaultsDialog : public QDialog
{
    Q_OBJECT
public:
    using QDialog::QDialog;

    /// Closes the dialog, unless the error window is open over it.
    void reject() override;

signals:
    /// What was typed is refused, for that reason: the dialog expects to be disabled until the
    /// operator has read it.
    void refused(const QString &message);

protected:
    /// The five buttons, one call below for each; Enter presses OK. The caller owns the layout.
    QLayout *buttonRow();

    virtual void cmdSaveDef_Click() = 0;
    virtual void cmdRestDef_Click() = 0;
    virtual void cmdOK_Click() = 0;
    virtual void cmdApply_Click() = 0;
    /// Sets the focus to the box where an entry is corrected first.
    virtual void focusFirstBox() = 0;

    void changeEvent(QEvent *event) override;
};
