#pragma once

#include "platform/operator.h"

#include <QStringList>
#include <functional>

/// Records what the operator was told and answers at once.
class FakeOperator final : public Operator
{
public:
    void tell(const QString &text, Icon icon = Icon::None) override
    {
        told += text;
        lastIcon = icon;
        if (meanwhile)
            meanwhile();
    }
    Answer ask(const QString &text) override
    {
        asked += text;
        if (meanwhile)
            meanwhile();
        return answer;
    }

    QStringList told;
    QStringList asked;
    Icon lastIcon = Icon::None;
    Answer answer = Answer::Cancel;
    /// What happens while a box is open: its nested event loop lets anything run.
    std::function<void()> meanwhile;
};
