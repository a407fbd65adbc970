#pragma once

#include "platform/operator.h"

class QWidget;

/// The operator's message boxes, modal to the whole program, titled with the application's title.
class MessageBoxOperator final : public Operator
{
public:
    explicit MessageBoxOperator(const QString &title) : m_title(title) {}

    void tell(const QString &text, Icon icon) override;
    Answer ask(const QString &text) override;

private:
    QString m_title;
};
