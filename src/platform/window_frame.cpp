#include "platform/window_frame.h"
#include "platform/twips.h"

#include <QMdiSubWindow>
#include <QRect>
#include <QStyle>
#include <algorithm>

namespace
{

int titleBarHeight(const QWidget &form)
{
    return form.style()->pixelMetric(QStyle::PM_TitleBarHeight);
}

int titleBarButtonsWidth(const QWidget &form)
{
    constexpr int kButtons = 5; // each as wide as the bar is high, the icon included
    return titleBarHeight(form) * kButtons;
}

/// What the frame stands in; null for a window of its own, which the window system looks after.
const QWidget *areaAround(const QWidget &frame)
{
    return frame.isWindow() ? nullptr : frame.parentWidget();
}

/// The place nearest to `corner` where all of the frame is seen, or its beginning when it is larger
/// than the area.
QPoint insideOf(const QWidget &area, const QWidget &frame, QPoint corner)
{
    return {std::clamp(corner.x(), 0, std::max(0, area.width() - frame.width())),
            std::clamp(corner.y(), 0, std::max(0, area.height() - frame.height()))};
}

/// True when enough of the title bar is seen to move the frame by it.
bool canBeMoved(const QWidget &frame, const QWidget &area)
{
    const QRect bar(frame.pos(), QSize(frame.width(), titleBarHeight(frame)));
    const QRect seen = bar & area.rect();
    return seen.width() >= std::min(bar.width(), titleBarButtonsWidth(frame)) &&
           seen.height() * 2 >= bar.height();
}

} // namespace

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
    keepInSight(form);
}

void fitCaption(QWidget &form)
{
    QFont font = form.font();
    font.setBold(true); // as some window systems write captions
    form.setMinimumWidth(QFontMetrics(font).horizontalAdvance(form.windowTitle()) +
                         titleBarButtonsWidth(form));
}

void keepInSight(QWidget &form)
{
    QWidget &frame = *frameOf(form);
    const QWidget *area = areaAround(frame);
    if (area && !canBeMoved(frame, *area))
        frame.move(insideOf(*area, frame, frame.pos()));
}

void centreOnScreen(QWidget &form, QSize screenTwips)
{
    QWidget &frame = *frameOf(form);
    QPoint corner((pixelsFromTwips(screenTwips.width()) - frame.width()) / 2,
                  (pixelsFromTwips(screenTwips.height()) - frame.height()) / 2);
    const QWidget *area = areaAround(frame);
    frame.move(area ? insideOf(*area, frame, area->mapFromGlobal(corner)) : corner);
}
