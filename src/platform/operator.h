#pragma once

#include <QString>

/// Everything that tells or asks the operator. In the program these are modal message boxes titled
/// with the application's title: they run a nested event loop, so timers tick, bytes arrive and
/// other handlers run before a call returns. Read state again afterwards.
class Operator
{
public:
    enum class Icon { None, Critical, Exclamation };
    enum class Answer { Yes, No, Cancel };

    virtual ~Operator() = default;
    /// A box with an OK button.
    virtual void tell(const QString &text, Icon icon = Icon::None) = 0;
    /// A box with the buttons Yes, No and Cancel and no icon; closing it counts as Cancel.
    virtual Answer ask(const QString &text) = 0;
};
