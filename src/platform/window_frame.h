#pragma once

#include <QRect>

class QWidget;

/// Forms stand in sub windows of the main window; what moves, closes or is disabled is the sub
/// window, not the form inside.

/// The sub window that holds the form, or the form's own window when it has none.
QWidget *frameOf(QWidget &form);

/// Where a form's frame stood, kept while the form itself comes and goes; twips from the upper left
/// corner of what the frame stands in.
struct WindowPosition {
    int left = 0;
    int top = 0;

    /// A maximised or minimised frame leaves the position as it was.
    void save(QWidget &form);
    /// Moves the frame back there, kept in sight.
    void restore(QWidget &form) const;
};

/// The same with the frame's size, for a window that the operator may size.
class WindowPlace
{
public:
    /// A minimised frame leaves the place as it was, a maximised one all but its being maximised.
    void save(QWidget &form);
    /// Restores size and place as far as the area has room; does nothing before the first save().
    void restore(QWidget &form) const;

private:
    QRect m_normal; ///< of the frame, in pixels
    bool m_maximised = false;
};

/// Moves a sub window that the operator could not reach back into its area, which may have become
/// smaller. One that is partly out stays where it is while its title bar can be grasped: the
/// operator has put it there.
void keepInSight(QWidget &form);

/// Shrinks a sub window to its area and moves all of it inside. Once there is room again it returns
/// to its former size and place, unless the operator has moved it meanwhile. A maximised or
/// minimised one is left alone.
void fitIntoArea(QWidget &form);

/// Width in pixels that a form's frame needs to show the caption whole.
int captionWidth(const QWidget &form);

/// Makes the form at least that wide.
void fitCaption(QWidget &form);

/// Moves the form's frame to the middle of a screen of the given size in twips, as far as it stays
/// visible in its area.
void centreOnScreen(QWidget &form, QSize screenTwips);
