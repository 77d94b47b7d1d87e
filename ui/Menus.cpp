#include "Menus.h"

#include "NamedException.h"

#include <QAction>
#include <QMenu>

namespace Menus {

namespace {

void place(QMenu *menu, QAction *action, int index)
{
    const QList<QAction *> items = menu->actions();
    if (index < -1 || index > items.size()) {
        delete action;
        throw NamedException(NSRangeException, QStringLiteral("*** -[NSMenu insertItem:atIndex:]: index (%1) beyond bounds (%2)")
                                                   .arg(index)
                                                   .arg(items.size()));
    }
    menu->insertAction(index == -1 ? nullptr : items.value(index), action);
}

} // namespace

void insertItem(QMenu *menu, const QString &title, int index, bool enabled, const QIcon &icon)
{
    if (!menu)
        return;
    auto *item = new QAction(icon, title, menu);
    item->setEnabled(enabled);
    place(menu, item, index);
}

void insertSeparator(QMenu *menu, int index)
{
    if (!menu)
        return;
    auto *separator = new QAction(menu);
    separator->setSeparator(true);
    place(menu, separator, index);
}

void removeMenuItems(QMenu *menu, bool shouldRelease)
{
    while (menu && !menu->actions().isEmpty()) {
        QAction *item = menu->actions().constLast();
        if (QMenu *submenu = item->menu())
            removeMenuItems(submenu, shouldRelease);
        menu->removeAction(item);
        // Deleted later: the item may be the one whose choice runs this.
        if (item->parent() == menu)
            item->deleteLater();
    }
}

} // namespace Menus
