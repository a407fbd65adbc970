#include "app/settings/number_entry.h"
#include "platform/numeric_text.h"

#include <algorithm>

bool takeNumbers(std::initializer_list<NumberEntry> entries)
{
    if (!std::all_of(entries.begin(), entries.end(),
                     [](const NumberEntry &entry) { return isNumericText(entry.text); }))
        return false;
    for (const NumberEntry &entry : entries) {
        entry.text.replace(QLatin1Char(','), QLatin1Char('.'));
        entry.setting = leadingNumber(entry.text);
    }
    return true;
}
