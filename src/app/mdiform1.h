#pragma once

#include "app/main_menu.h"

#include <QMainWindow>
#include <QPointer>
#include <functional>

class QMdiArea;
class QMdiSubWindow;

/// The main window: the menu bar and the area that holds the other windows. It knows no command:
/// the program gives it the menu.
class MDIForm1 final : public QMainWindow
{
    Q_OBJECT
public:
    /// `mayClose` runs the closing dialogue and returns whether the window may close.
    explicit MDIForm1(std::function<bool()> mayClose);

    /// Fills the menu bar, once.
    void setMenu(const std::vector<MenuItem> &items);
    void setItemEnabled(const QString &item, bool enabled);
    /// Pops up the submenu of that name.
    void popUp(const QString &submenu, const QPoint &globalPosition);

    /// Puts a window into a frame of the area, which owns both from then on. Not shown yet.
    QMdiSubWindow *addChild(QWidget *child);
    /// Shows a child window, restores it when it was minimised, moves it into sight and gives it
    /// the focus.
    void bringUp(QWidget *child);

    /// Gives the focus to a child window that is shown; a minimised one stays minimised.
    void activate(QWidget *child);

    /// The child window in front, null when there is none.
    QWidget *activeChild() const;

    /// Size of the area that holds the child windows, in pixels.
    QSize innerSize() const;

signals:
    /// The area has another size. Receivers lay out their windows; then every window is fitted into
    /// the area.
    void areaResized();
    /// A child window has come to the front.
    void childActivated(QWidget *child);
    /// A child window was minimised, maximised or restored and has its new size.
    void childStateChanged(QWidget *child);

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void openMenuBar();
    void leaveMenuBar();
    void fitMenuBar();
    void followArea();
    void followState(QWidget &child);

    std::function<bool()> m_mayClose;
    QMdiArea *m_area;
    QPointer<QWidget> m_focusBefore; ///< had the focus before the menu bar took it
};
