#include "app/settings/number_entry.h"
#include "platform/numeric_text.h"

#include <algorithm>

bool takeNumbers(const std::vector<NumberEntry> &entries)
{
    if (!std::all_of(entries.begin(), entries.end(),
                     [](const NumberEntry &entry) { return typedNumber(entry.text).has_value(); }))
        return false;
    for (const NumberEntry &entry : entries) {
        entry.text = withDecimalPoint(entry.text);
        entry.setting = numberFromText(entry.text);
    }
    return true;
}
