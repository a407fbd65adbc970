#pragma once

#include <cmath>

/// Window and control sizes are given in twips, 1/1440 inch; a screen pixel is 15 of them
/// (96 dots per inch).
constexpr int kTwipsPerPixel = 15;

constexpr int twipsFromPixels(int pixels)
{
    return pixels * kTwipsPerPixel;
}

inline int pixelsFromTwips(double twips)
{
    return static_cast<int>(std::lround(twips / kTwipsPerPixel));
}
