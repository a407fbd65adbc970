#pragma once

#include <QString>
#include <functional>
#include <vector>

/// Reports to the operator why an entry is refused.
using ShowError = std::function<void(const QString &message)>;

/// One number box of a settings tab and the setting behind it.
struct NumberEntry {
    QString &text;
    double &setting;
};

/// Takes over what was typed on a tab of plain numbers. When every text is a typedNumber, the texts
/// get a decimal point and lose the blanks around them, the settings get the numbers, and it
/// returns true. Otherwise nothing changes.
bool takeNumbers(const std::vector<NumberEntry> &entries);
