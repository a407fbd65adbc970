#pragma once

#include <QString>
#include <functional>

class QDialog;
class QLayout;
class QPushButton;

struct ButtonLook {
    QString objectName;
    QString caption;
};

/// A button of a dialog, which owns it, with some room around its caption.
QPushButton *dialogButton(QDialog &dialog, const ButtonLook &look);

/// The centred pair of buttons at the bottom of a small dialog. Enter presses the accepting one and
/// runs `accepted`; the other one rejects the dialog, like Esc. The caller owns the layout.
QLayout *dialogButtons(QDialog &dialog, const ButtonLook &accept, const ButtonLook &reject,
                       std::function<void()> accepted);
