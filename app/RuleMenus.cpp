#include "RuleMenus.h"

#include "SavedRules.h"

#include <QAction>
#include <QMenu>
#include <QWidget>

namespace RuleMenus {

namespace {

const char *const savedRuleProperty = "savedRule";

void fill(QMenu *menu, const QStringList &names, const QString &handler,
          const std::function<void(const QString &, const QString &)> &chosen)
{
    if (!menu)
        return;
    for (QAction *action : menu->actions())
        if (action->property(savedRuleProperty).isValid()) {
            menu->removeAction(action);
            action->deleteLater();
        }
    for (const QString &name : names) {
        // A "&" in a name is shown, not taken for a shortcut.
        auto *action = new QAction(QString(name).replace(u'&', QLatin1String("&&")), menu);
        action->setProperty(savedRuleProperty, name);
        QObject::connect(action, &QAction::triggered, menu, [chosen, handler, name] { chosen(handler, name); });
        menu->addAction(action);
    }
}

} // namespace

void install(QWidget *window, std::function<void(const QString &, const QString &)> chosen)
{
    QMenu *rules = window ? window->findChild<QMenu *>(QStringLiteral("menu_rules")) : nullptr;
    if (!rules)
        return;
    QMenu *deleting = window->findChild<QMenu *>(QStringLiteral("menu_delete_rule"));
    const auto refill = [rules, deleting, chosen] {
        const QStringList names = SavedRules().names();
        fill(rules, names, QStringLiteral("choseRule"), chosen);
        fill(deleting, names, QStringLiteral("choseRuleToDelete"), chosen);
        if (deleting)
            deleting->setEnabled(!names.isEmpty());
    };
    QObject::connect(rules, &QMenu::aboutToShow, rules, refill);
    refill();
}

} // namespace RuleMenus
