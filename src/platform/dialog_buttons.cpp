#include "platform/dialog_buttons.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QPushButton>

constexpr int kRoomInCharacters = 2; // beside the caption, both sides together

QPushButton *dialogButton(QDialog &dialog, const ButtonLook &look)
{
    // Made inside the dialog: only there can a button become the default one.
    auto *button = new QPushButton(look.caption, &dialog);
    button->setObjectName(look.objectName);
    button->setMinimumWidth(button->sizeHint().width() +
                            button->fontMetrics().averageCharWidth() * kRoomInCharacters);
    return button;
}

QLayout *dialogButtons(QDialog &dialog, const ButtonLook &accept, const ButtonLook &reject,
                       std::function<void()> accepted)
{
    QPushButton *acceptButton = dialogButton(dialog, accept);
    acceptButton->setDefault(true);
    QObject::connect(acceptButton, &QPushButton::clicked, &dialog, std::move(accepted));
    QPushButton *rejectButton = dialogButton(dialog, reject);
    QObject::connect(rejectButton, &QPushButton::clicked, &dialog, &QDialog::reject);

    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(acceptButton);
    row->addWidget(rejectButton);
    row->addStretch();
    return row;
}
