#pragma once

#include <QObject>

class QAction;
class QMenuBar;

/// The menus of the main window: fills `bar` with every item under its name and caption. Commands
/// are plain actions.
void buildMainMenu(QMenuBar &bar);

/// Every item of the bar in its order, submenus before what they hold; objectName is the item's
/// name.
QList<QAction *> menuItems(const QMenuBar &bar);

/// The item of that name. Throws RuntimeError 9 when there is none.
QAction *menuItem(const QMenuBar &bar, const QString &name);
