#pragma once

#include <QStringList>

class QWidget;

/// What an operator would find wrong with a window as it is shown: smaller than it wants to be,
/// outside the area that holds it, a control outside its parent, empty, over another one, with a
/// shortened text or with letters that do not stand out from what lies behind. One line a fault,
/// empty when the window is sound.
///
/// `frame`: the sub window of a form, or a window of its own. What a control shows by scrolling is
/// the control's own business.
QStringList faultsOf(const QWidget &frame);
