#include "app/defaults_dialog.h"
#include "app/texts.h"
#include "platform/dialog_buttons.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPushButton>

QLayout *DefaultsDialog::buttonRow()
{
    auto *row = new QHBoxLayout;
    const auto add = [&](const QString &name, const QString &caption, auto &&clicked) {
        QPushButton *button = dialogButton(*this, {name, caption});
        connect(button, &QPushButton::clicked, this, clicked);
        row->addWidget(button);
        return button;
    };
    add(QStringLiteral("cmdSaveDef"), texts::app::saveDefaultsButton(),
        &DefaultsDialog::cmdSaveDef_Click);
    add(QStringLiteral("cmdRestDef"), texts::app::restoreDefaultsButton(),
        &DefaultsDialog::cmdRestDef_Click);
    row->addStretch();
    add(QStringLiteral("cmdOK"), texts::app::okButton(), &DefaultsDialog::cmdOK_Click)
        ->setDefault(true);
    add(QStringLiteral("cmdCancel"), texts::app::cancelButton(), &DefaultsDialog::reject);
    add(QStringLiteral("cmdApply"), texts::app::applyButton(), &DefaultsDialog::cmdApply_Click);
    return row;
}

void DefaultsDialog::reject()
{
    // A window system may still offer the title bar's button of a disabled window.
    if (isEnabled())
        QDialog::reject();
}

void DefaultsDialog::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    // Disabling took the focus away; after the error window closes the entry is corrected.
    if (event->type() == QEvent::EnabledChange && isEnabled())
        focusFirstBox();
}
