#include "app/window_lock.h"
#include "app/main_menu.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <algorithm>

void WindowLock::lock(const QWidget &dialog)
{
    salveaza_stare_meniu();
    seteaza_meniu(false);
    activeaza_ferestre(dialog, false);
}

void WindowLock::release(const QWidget &dialog)
{
    seteaza_meniu(true);
    activeaza_ferestre(dialog, true);
}

void WindowLock::salveaza_stare_meniu()
{
    StareMeniu.clear();
    for (const QAction *item : menuItems(*m_window.menuBar()))
        StareMeniu.push_back({item->objectName(), item->isEnabled()});
}

void WindowLock::seteaza_meniu(bool enable)
{
    m_window.menuBar()->setEnabled(enable);
    for (QAction *item : menuItems(*m_window.menuBar())) {
        const bool wasEnabled =
            std::any_of(StareMeniu.cbegin(), StareMeniu.cend(), [&](const ItemState &state) {
                return state.enabled && state.name == item->objectName();
            });
        if (!enable || wasEnabled)
            item->setEnabled(enable);
    }
}

void WindowLock::disable(QWidget &frame)
{
    frame.setEnabled(false);
    frame.installEventFilter(this);
}

void WindowLock::enable(QWidget &frame)
{
    frame.removeEventFilter(this);
    frame.setEnabled(true);
}

void WindowLock::activeaza_ferestre(const QWidget &dialog, bool enable)
{
    const auto set = [&](QWidget &frame) { enable ? this->enable(frame) : disable(frame); };
    // The frame of a child window is disabled, not what it holds: its close button counts too.
    for (QMdiArea *area : m_window.findChildren<QMdiArea *>())
        for (QMdiSubWindow *frame : area->subWindowList())
            if (frame->widget() != &dialog)
                set(*frame);
    // A closed window stays enabled, like the error window between two errors.
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window != &m_window && window != &dialog && window->windowType() != Qt::Popup &&
            (enable || window->isVisible()))
            set(*window);
}

bool WindowLock::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Close)
        return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}
