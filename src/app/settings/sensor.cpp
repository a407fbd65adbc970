#include "app/settings/sensor.h"

#include <array>
#include <utility>

QString cod_senzor(const QString &text)
{
    static constexpr std::array<std::pair<QLatin1String, QLatin1String>, 8> kCodes{{
        {QLatin1String("T1"), QLatin1String("10")},
        {QLatin1String("T2"), QLatin1String("11")},
        {QLatin1String("T3"), QLatin1String("12")},
        {QLatin1String("T4"), QLatin1String("13")},
        {QLatin1String("P1"), QLatin1String("20")},
        {QLatin1String("P2"), QLatin1String("21")},
        {QLatin1String("P3"), QLatin1String("22")},
        {QLatin1String("P4"), QLatin1String("23")},
    }};
    for (const auto &[name, code] : kCodes)
        if (text == name)
            return code;
    return {};
}
