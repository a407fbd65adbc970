#include "platform/message_box_operator.h"
#include "platform/window_frame.h"

#include <QApplication>
#include <QGridLayout>
#include <QMessageBox>
#include <algorithm>

namespace
{

QMessageBox::Icon boxIcon(Operator::Icon icon)
{
    switch (icon) {
    case Operator::Icon::None:
        return QMessageBox::NoIcon;
    case Operator::Icon::Critical:
        return QMessageBox::Critical;
    case Operator::Icon::Exclamation:
        return QMessageBox::Warning;
    }
    return QMessageBox::NoIcon;
}

/// While the operator works in another program no window is active. A box without a parent could
/// open behind the windows that it blocks.
QWidget *owner()
{
    if (QWidget *active = QApplication::activeWindow())
        return active;
    if (QWidget *modal = QApplication::activeModalWidget())
        return modal;
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto main = std::find_if(windows.cbegin(), windows.cend(), [](const QWidget *window) {
        return window->isVisible() && !window->parentWidget() && window->windowType() == Qt::Window;
    });
    return main == windows.cend() ? nullptr : *main;
}

/// The box takes its size from its layout and ignores a minimum width.
void widenToCaption(QMessageBox &box)
{
    if (auto *grid = qobject_cast<QGridLayout *>(box.layout()))
        grid->addItem(new QSpacerItem(captionWidth(box), 0), grid->rowCount(), 0, 1,
                      grid->columnCount());
}

int run(QMessageBox &box)
{
    widenToCaption(box);
    box.setTextFormat(Qt::PlainText);
    box.setWindowModality(Qt::ApplicationModal);
    return box.exec();
}

} // namespace

void MessageBoxOperator::tell(const QString &text, Icon icon)
{
    QMessageBox box(boxIcon(icon), m_title, text, QMessageBox::Ok, owner());
    run(box);
}

Operator::Answer MessageBoxOperator::ask(const QString &text)
{
    QMessageBox box(QMessageBox::NoIcon, m_title, text,
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, owner());
    switch (run(box)) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    default:
        return Answer::Cancel;
    }
}
