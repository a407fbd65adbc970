#include "platform/message_box_operator.h"

#include <QApplication>
#include <QMessageBox>

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

int run(QMessageBox &box)
{
    box.setTextFormat(Qt::PlainText);
    box.setWindowModality(Qt::ApplicationModal);
    return box.exec();
}

} // namespace

void MessageBoxOperator::tell(const QString &text, Icon icon)
{
    QMessageBox box(boxIcon(icon), m_title, text, QMessageBox::Ok, QApplication::activeWindow());
    run(box);
}

Operator::Answer MessageBoxOperator::ask(const QString &text)
{
    QMessageBox box(QMessageBox::NoIcon, m_title, text,
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
                    QApplication::activeWindow());
    switch (run(box)) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    default:
        return Answer::Cancel;
    }
}
