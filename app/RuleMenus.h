#pragma once

#include <QString>
#include <functional>

class QWidget;

// The saved rules in the window's menus, read again each time the Rules
// menu opens (a rule saved by nomen-cli or copied into the folder shows at
// once): each name under the menu's last separator, to use it, and in its
// Delete Rule submenu, to delete it.
namespace RuleMenus {

// `chosen` is told "choseRule" or "choseRuleToDelete" and the rule's name.
void install(QWidget *window, std::function<void(const QString &handler, const QString &name)> chosen);

} // namespace RuleMenus
