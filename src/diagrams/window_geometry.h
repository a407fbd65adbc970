#pragma once

#include "diagrams/layout.h"

#include <QRect>
#include <QSize>

class QWidget;

/// From the twips of a layout to the pixels of a window, and back.

TwipsSize twipsSize(QSize pixels);
QSize pixelSize(TwipsSize twips);
QRect pixelRect(const TwipsRect &twips);

/// Sizes a form with its frame; a maximised or minimised one keeps its size. The form inside has
/// its new size at once, shown or not.
void resizeFrame(QWidget &form, TwipsSize size);
