#pragma once

#include <QString>
#include <functional>
#include <vector>

class QAction;
class QMenuBar;

/// One row of the main menu. A Submenu row has no command; the InSubmenu rows that follow it are
/// its items.
struct MenuItem {
    enum class Kind { Submenu, InSubmenu, TopCommand };

    Kind kind;
    QString name; ///< its action's objectName
    QString caption;
    std::function<void()> command = {};
};

/// Fills `bar` with the items in their order.
void buildMainMenu(QMenuBar &bar, const std::vector<MenuItem> &items);

/// Every item of the bar in its order, each submenu before its items.
QList<QAction *> menuItems(const QMenuBar &bar);

/// The item of that name. Throws RuntimeError 9 when there is none.
QAction *menuItem(const QMenuBar &bar, const QString &name);
