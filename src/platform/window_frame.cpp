#include "platform/window_frame.h"
#include "platform/twips.h"

#include <QMdiSubWindow>
#include <QStyle>
#include <algorithm>

QWidget *frameOf(QWidget &form)
{
    for (QWidget *widget = &form; widget; widget = widget->parentWidget())
        if (qobject_cast<QMdiSubWindow *>(widget))
            return widget;
    return form.window();
}

void WindowPosition::save(QWidget &form)
{
    const QWidget &frame = *frameOf(form);
    if (frame.isMaximized() || frame.isMinimized())
        return;
    left = twipsFromPixels(frame.x());
    top = twipsFromPixels(frame.y());
}

void WindowPosition::restore(QWidget &form) const
{
    frameOf(form)->move(pixelsFromTwips(left), pixelsFromTwips(top));
}

void fitCaption(QWidget &form)
{
    QFont font = form.font();
    font.setBold(true);                 // as some window systems write captions
    constexpr int kTitleBarButtons = 5; // each as wide as the bar is high, the icon included
    form.setMinimumWidth(QFontMetrics(font).horizontalAdvance(form.windowTitle()) +
                         form.style()->pixelMetric(QStyle::PM_TitleBarHeight) * kTitleBarButtons);
}

void centreOnScreen(QWidget &form, QSize screenTwips)
{
    QWidget &frame = *frameOf(form);
    QPoint corner((pixelsFromTwips(screenTwips.width()) - frame.width()) / 2,
                  (pixelsFromTwips(screenTwips.height()) - frame.height()) / 2);
    if (const QWidget *area = frame.isWindow() ? nullptr : frame.parentWidget()) {
        corner = area->mapFromGlobal(corner);
        // Out of sight, the frame could not be answered.
        corner.setX(std::clamp(corner.x(), 0, std::max(0, area->width() - frame.width())));
        corner.setY(std::clamp(corner.y(), 0, std::max(0, area->height() - frame.height())));
    }
    frame.move(corner);
}
