#include "app/main_menu.h"
#include "platform/runtime_error.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <array>

namespace
{

enum class Kind { Submenu, InSubmenu, TopCommand };

struct Item {
    Kind kind;
    const char *name;
    const char *caption;
};

constexpr std::array kItems{
    Item{Kind::Submenu, "MeniuFisier", "Fisiere"},
    Item{Kind::InSubmenu, "DeschidMdbCurent", "&Deschide baze date curente"},
    Item{Kind::InSubmenu, "DeschidMdbArhiva", "Deschide &arhiva"},
    Item{Kind::InSubmenu, "DeschidDiag", "Deschide diag&ramele"},
    Item{Kind::InSubmenu, "DeschidGenerator", "Deschide &generator diagrame"},
    Item{Kind::InSubmenu, "DeschidCentruControl", "Deschide &centrul de control"},
    Item{Kind::InSubmenu, "SalvareArh", "&Salvare arhive baze de date"},
    Item{Kind::InSubmenu, "SalvareImg", "Salvare &imagine diagrame"},
    Item{Kind::InSubmenu, "ExitProg", "&Iesire"},
    Item{Kind::Submenu, "MeniuTemp", "Diagrama Senzori 1,2,3."},
    Item{Kind::InSubmenu, "LimitTempGraf", "Setare &limite grafic"},
    Item{Kind::InSubmenu, "AlarmTempGraf", "Setare &alarme"},
    Item{Kind::InSubmenu, "ScanTempGraf", "Setare &optiuni scanare"},
    Item{Kind::InSubmenu, "mnuNumeSenzori1", "Setare &nume senzori"},
    Item{Kind::Submenu, "MeniuPres", "Diagrama Senzori 4,5,6."},
    Item{Kind::InSubmenu, "LimitPresGraf", "Setare &limite grafic"},
    Item{Kind::InSubmenu, "AlarmPresGraf", "Setare &alarme"},
    Item{Kind::InSubmenu, "ScanPresGraf", "Setare &optiuni scanare"},
    Item{Kind::InSubmenu, "mnuNumeSenzori2", "Setare &nume senzori"},
    Item{Kind::TopCommand, "MeniuIstoric", "Istoric Diagrame"},
    Item{Kind::TopCommand, "MeniuCalib", "Calibrare senzori"},
    Item{Kind::Submenu, "MeniuPrint", "Printare"},
    Item{Kind::InSubmenu, "PrintDiag", "&Printare diagrame"},
    Item{Kind::Submenu, "MeniuDespre", "Help"},
    Item{Kind::InSubmenu, "DocProg", "&Documentatie"},
    Item{Kind::InSubmenu, "DespreProg", "Despre &program"},
};

QAction *addItem(QMenuBar &bar, QMenu *&submenu, const Item &item)
{
    const QString caption = QString::fromLatin1(item.caption);
    switch (item.kind) {
    case Kind::Submenu:
        submenu = bar.addMenu(caption);
        submenu->setObjectName(QString::fromLatin1(item.name));
        return submenu->menuAction();
    case Kind::InSubmenu:
        return submenu->addAction(caption);
    case Kind::TopCommand:
        break;
    }
    return bar.addAction(caption);
}

} // namespace

void buildMainMenu(QMenuBar &bar)
{
    QMenu *submenu = nullptr;
    for (const Item &item : kItems) {
        QAction *action = addItem(bar, submenu, item);
        action->setObjectName(QString::fromLatin1(item.name));
        // A system with one menu bar for all programs would move items by their captions.
        action->setMenuRole(QAction::NoRole);
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
