#include "platform/window_frame.h"
#include "platform/twips.h"

#include <QMdiSubWindow>
#include <QRect>
#include <QStyle>
#include <QVariant>
#include <algorithm>

namespace
{

/// What fitIntoArea() keeps with a sub window.
constexpr const char *kWantedPlace = "wantedPlace";
constexpr const char *kFittedPlace = "fittedPlace";

int titleBarHeight(const QWidget &form)
{
    return form.style()->pixelMetric(QStyle::PM_TitleBarHeight);
}

int titleBarButtonsWidth(const QWidget &form)
{
    constexpr int kButtons = 5; // each as wide as the bar is high, the icon included
    return titleBarHeight(form) * kButtons;
}

/// The area that holds the frame; null for a top-level window, which the window system manages.
const QWidget *areaAround(const QWidget &frame)
{
    return frame.isWindow() ? nullptr : frame.parentWidget();
}

/// The place nearest to `corner` where the whole frame is visible, or its top left part when it is
/// larger than the area.
QPoint insideOf(const QWidget &area, const QWidget &frame, QPoint corner)
{
    return {std::clamp(corner.x(), 0, std::max(0, area.width() - frame.width())),
            std::clamp(corner.y(), 0, std::max(0, area.height() - frame.height()))};
}

/// True when enough of the title bar is visible to drag the frame by it.
bool canBeMoved(const QWidget &frame, const QWidget &area)
{
    const QRect bar(frame.pos(), QSize(frame.width(), titleBarHeight(frame)));
    const QRect seen = bar & area.rect();
    return seen.width() >= std::min(bar.width(), titleBarButtonsWidth(frame)) &&
           seen.height() * 2 >= bar.height();
}

/// The place of a frame before it was fitted, or its present one if it was moved or sized since.
QRect wantedPlace(const QWidget &frame)
{
    const bool isFitted = frame.property(kFittedPlace).toRect() == frame.geometry();
    return isFitted ? frame.property(kWantedPlace).toRect() : frame.geometry();
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

void WindowPlace::save(QWidget &form)
{
    const QWidget &frame = *frameOf(form);
    if (frame.isMinimized())
        return;
    m_maximised = frame.isMaximized();
    if (!m_maximised)
        m_normal = wantedPlace(frame);
}

void WindowPlace::restore(QWidget &form) const
{
    QWidget &frame = *frameOf(form);
    if (!m_normal.isNull()) {
        frame.setGeometry(m_normal);
        fitIntoArea(form);
    }
    if (m_maximised)
        frame.showMaximized();
}

void fitIntoArea(QWidget &form)
{
    QWidget &frame = *frameOf(form);
    const QWidget *area = areaAround(frame);
    if (!area || frame.isMaximized() || frame.isMinimized())
        return;
    const QRect wanted = wantedPlace(frame);
    frame.resize(wanted.size().boundedTo(area->size()));
    frame.move(insideOf(*area, frame, wanted.topLeft()));
    frame.setProperty(kWantedPlace, wanted);
    frame.setProperty(kFittedPlace, frame.geometry());
}

int captionWidth(const QWidget &form)
{
    QFont font = form.font();
    font.setBold(true); // as some window systems write captions
    return QFontMetrics(font).horizontalAdvance(form.windowTitle()) + titleBarButtonsWidth(form);
}

void fitCaption(QWidget &form)
{
    form.setMinimumWidth(captionWidth(form));
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
