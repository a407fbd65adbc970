#include "app/main_menu.h"
#include "platform/runtime_error.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

static QAction *addItem(QMenuBar &bar, QMenu *&submenu, const MenuItem &item)
{
    switch (item.kind) {
    case MenuItem::Kind::Submenu:
        submenu = bar.addMenu(item.caption);
        submenu->setObjectName(item.name);
        return submenu->menuAction();
    case MenuItem::Kind::InSubmenu:
        return submenu->addAction(item.caption);
    case MenuItem::Kind::TopCommand:
        break;
    }
    return bar.addAction(item.caption);
}

void buildMainMenu(QMenuBar &bar, const std::vector<MenuItem> &items)
{
    QMenu *submenu = nullptr;
    for (const MenuItem &item : items) {
        QAction *action = addItem(bar, submenu, item);
        action->setObjectName(item.name);
        // A system with one menu bar for all programs would move items by their captions.
        action->setMenuRole(QAction::NoRole);
        if (item.command)
            QObject::connect(action, &QAction::triggered, &bar, item.command);
    }
}

QList<QAction *> menuItems(const QMenuBar &bar)
{
    QList<QAction *> items;
    for (QAction *top : bar.actions()) {
        items += top;
        if (top->menu())
            items += top->menu()->actions();
    }
    return items;
}

QAction *menuItem(const QMenuBar &bar, const QString &name)
{
    for (QAction *item : menuItems(bar))
        if (item->objectName() == name)
            return item;
    throw RuntimeError(RuntimeError::SubscriptOutOfRange);
}
