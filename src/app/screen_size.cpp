#include "app/screen_size.h"
#include "platform/twips.h"

#include <algorithm>
#include <limits>

static qint16 saturated(int twips)
{
    constexpr int kLargest = std::numeric_limits<qint16>::max();
    return static_cast<qint16>(std::min(twips, kLargest));
}

ScreenSize dimensiuni_ecran(QSize screenPixels)
{
    const int height = twipsFromPixels(screenPixels.height());
    int width = twipsFromPixels(screenPixels.width());
    for (const int standardHeight : {7200, 9000, 11520})
        if (height == standardHeight)
            width = standardHeight / 3 * 4;
    return {saturated(height), saturated(width)};
}
