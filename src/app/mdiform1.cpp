#include "app/mdiform1.h"
#include "app/texts.h"
#include "platform/window_frame.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFontInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

namespace
{

constexpr int kSmallestLetters = 9; // pixels

} // namespace

MDIForm1::MDIForm1(std::function<bool()> mayClose)
    : m_mayClose(std::move(mayClose)), m_area(new QMdiArea(this))
{
    setObjectName(QStringLiteral("MDIForm1"));
    setWindowTitle(texts::app::applicationTitle() + QStringLiteral(" v") +
                   QStringLiteral(STATION_VERSION));
    setCentralWidget(m_area);
    m_area->viewport()->installEventFilter(this);
    connect(m_area, &QMdiArea::subWindowActivated, this, [this](const QMdiSubWindow *frame) {
        if (frame && frame->widget())
            emit childActivated(frame->widget());
    });
    // The top items have no access keys: without F10 no key would lead to them on every system.
    connect(new QShortcut(Qt::Key_F10, this), &QShortcut::activated, this, &MDIForm1::openMenuBar);
    // A maximised window leaves the others as large as they are.
    m_area->setOption(QMdiArea::DontMaximizeSubWindowOnActivation);
    menuBar()->installEventFilter(this);
}

void MDIForm1::setMenu(const std::vector<MenuItem> &items)
{
    buildMainMenu(*menuBar(), items);
}

void MDIForm1::setItemEnabled(const QString &item, bool enabled)
{
    menuItem(*menuBar(), item)->setEnabled(enabled);
}

void MDIForm1::popUp(const QString &submenu, const QPoint &globalPosition)
{
    menuItem(*menuBar(), submenu)->menu()->popup(globalPosition);
}

QMdiSubWindow *MDIForm1::addChild(QWidget *child)
{
    QMdiSubWindow *frame = m_area->addSubWindow(child);
    frame->setObjectName(child->objectName() + QStringLiteral("Frame"));
    // By default the area places a window where it overlaps least, which may be out of sight.
    frame->move(0, 0);
    connect(frame, &QMdiSubWindow::windowStateChanged, child,
            [this, child](Qt::WindowStates before, Qt::WindowStates now) {
                if ((before ^ now) & (Qt::WindowMinimized | Qt::WindowMaximized))
                    followState(*child);
            });
    return frame;
}

/// With the focus in the bar the arrows also lead over the items that have no submenu.
void MDIForm1::openMenuBar()
{
    if (!menuBar()->isEnabled() || menuBar()->activeAction())
        return;
    m_focusBefore = QApplication::focusWidget();
    menuBar()->setFocus(Qt::MenuBarFocusReason);
    menuBar()->setActiveAction(menuBar()->actions().constFirst());
}

void MDIForm1::leaveMenuBar()
{
    if (menuBar()->hasFocus() && !menuBar()->activeAction() && m_focusBefore)
        m_focusBefore->setFocus(Qt::MenuBarFocusReason);
}

/// In a narrow window the letters shrink, so that no item is out of sight.
void MDIForm1::fitMenuBar()
{
    QFont letters = QApplication::font(menuBar());
    menuBar()->setFont(letters);
    while (menuBar()->sizeHint().width() > width() &&
           QFontInfo(letters).pixelSize() > kSmallestLetters) {
        letters.setPixelSize(QFontInfo(letters).pixelSize() - 1);
        menuBar()->setFont(letters);
    }
}

void MDIForm1::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    fitMenuBar();
}

/// A restored window may have less room than before.
void MDIForm1::followState(QWidget &child)
{
    emit childStateChanged(&child);
    fitIntoArea(child);
}

void MDIForm1::followArea()
{
    emit areaResized();
    for (const QMdiSubWindow *frame : m_area->subWindowList())
        fitIntoArea(*frame->widget());
}

void MDIForm1::bringUp(QWidget *child)
{
    QWidget *frame = child->parentWidget();
    child->show();
    if (frame->isMinimized())
        frame->showNormal();
    else
        frame->show();
    m_area->setActiveSubWindow(qobject_cast<QMdiSubWindow *>(frame));
    child->setFocus();
    keepInSight(*child);
}

void MDIForm1::activate(QWidget *child)
{
    m_area->setActiveSubWindow(qobject_cast<QMdiSubWindow *>(child->parentWidget()));
    child->setFocus();
}

QWidget *MDIForm1::activeChild() const
{
    const QMdiSubWindow *frame = m_area->currentSubWindow();
    return frame ? frame->widget() : nullptr;
}

QSize MDIForm1::innerSize() const
{
    return m_area->viewport()->size();
}

void MDIForm1::closeEvent(QCloseEvent *event)
{
    event->setAccepted(m_mayClose());
}

bool MDIForm1::eventFilter(QObject *watched, QEvent *event)
{
    // The main window's own resize event comes before the area has its new size.
    if (watched == m_area->viewport() && event->type() == QEvent::Resize)
        QMetaObject::invokeMethod(this, &MDIForm1::followArea, Qt::QueuedConnection);
    // The bar may have been left with Escape. Queued: a chosen command first opens its window.
    if (watched == menuBar() && event->type() == QEvent::KeyRelease)
        QMetaObject::invokeMethod(this, &MDIForm1::leaveMenuBar, Qt::QueuedConnection);
    return QMainWindow::eventFilter(watched, event);
}
