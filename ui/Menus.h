#pragma once

#include <QIcon>
#include <QString>

class QMenu;

// Menu items a script adds and takes away. An item carries no action and
// no shortcut; the script reacts to the menu itself. A nil menu is left
// alone.
namespace Menus {

// Appends when the index is -1, else inserts before the item at the index
// (the item count appends too). Another index raises NSRangeException.
void insertItem(QMenu *menu, const QString &title, int index, bool enabled, const QIcon &icon = QIcon());
void insertSeparator(QMenu *menu, int index);

// Empties the menu from its last item to its first, each submenu before
// the item that holds it. Icons are shared by everyone who holds them:
// removing an item lets go of its share only, so an icon the script still
// holds stays whole, and one nobody else holds goes with its item. There
// is no extra share to give back, so shouldRelease changes nothing; it
// stays in the call for the scripts that pass it.
void removeMenuItems(QMenu *menu, bool shouldRelease);

} // namespace Menus
