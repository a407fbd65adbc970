#include "diagrams/window_geometry.h"
#include "platform/twips.h"
#include "platform/window_frame.h"

#include <QLayout>
#include <QWidget>

TwipsSize twipsSize(QSize pixels)
{
    return {double(twipsFromPixels(pixels.width())), double(twipsFromPixels(pixels.height()))};
}

QSize pixelSize(TwipsSize twips)
{
    return {pixelsFromTwips(twips.width), pixelsFromTwips(twips.height)};
}

QRect pixelRect(const TwipsRect &twips)
{
    return {pixelsFromTwips(twips.left), pixelsFromTwips(twips.top), pixelsFromTwips(twips.width),
            pixelsFromTwips(twips.height)};
}

void resizeFrame(QWidget &form, TwipsSize size)
{
    QWidget &frame = *frameOf(form);
    if (frame.isMaximized() || frame.isMinimized())
        return;
    frame.resize(pixelSize(size));
    // A hidden sub window would hand its new size on only when it is shown.
    if (QLayout *layout = frame.layout()) {
        layout->invalidate();
        layout->activate();
    }
}
