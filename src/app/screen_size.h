#pragma once

#include <QSize>

/// The screen size that windows are laid out for, in twips, each at most 32767.
struct ScreenSize {
    qint16 InaltimeEcran = 0; ///< height
    qint16 LatimeEcran = 0;   ///< width
};

/// The size to lay out for on a screen of the given pixels. Heights of 480, 600 and 768 pixels get
/// the width of a 4:3 screen, which the windows were designed for; any other height keeps its real
/// width.
ScreenSize dimensiuni_ecran(QSize screenPixels);
