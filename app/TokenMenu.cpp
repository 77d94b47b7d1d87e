#include "TokenMenu.h"

#include "DateTokens.h"

#include <QCoreApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>

namespace TokenMenu {

namespace {

QString ui(const char *key)
{
    return QCoreApplication::translate("ui", key);
}

void insert(QLineEdit &field, const QString &token)
{
    field.setFocus(Qt::OtherFocusReason);
    field.insert(token); // an edit like typing: the preview follows
}

} // namespace

void attach(QToolButton &button, QLineEdit &field)
{
    auto *menu = new QMenu(&button);
    menu->setObjectName(button.objectName() + QStringLiteral("_menu"));
    const auto add = [&](QMenu *into, const QString &title, const QString &token) {
        into->addAction(title, &field, [&field, token] { insert(field, token); });
    };
    add(menu, ui("Counter") + QStringLiteral("\t«#»"), QStringLiteral("«#»"));
    add(menu, ui("Folder name") + QStringLiteral("\t«ƒ»"), QStringLiteral("«ƒ»"));
    menu->addSection(ui("Date"));
    // The tokens as the user's language spells them, read when the menu
    // opens so it follows the table in use.
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, &field] {
        for (QAction *action : menu->actions())
            if (action->property("dateToken").toBool()) {
                menu->removeAction(action);
                action->deleteLater();
            }
        const LocalizedDateTokens tokens = LocalizedDateTokens::fromUiTable();
        QAction *formatted = menu->actions().last();
        for (const QString *token : tokens.all()) {
            const QString chosen = *token;
            auto *action = new QAction(chosen, menu);
            action->setProperty("dateToken", true);
            QObject::connect(action, &QAction::triggered, &field, [&field, chosen] { insert(field, chosen); });
            menu->insertAction(formatted, action);
        }
    });
    menu->addAction(ui("Date in a format of your own…"), &field, [&field] {
        bool chosen = false;
        const QString format = QInputDialog::getText(
            field.window(), ui("Date format"),
            ui("The date as strftime writes it (%Y year, %m month, %d day, %H hour, %M minute, %S second):"),
            QLineEdit::Normal, QStringLiteral("%Y-%m-%d"), &chosen);
        if (chosen && !format.isEmpty())
            insert(field, QStringLiteral("«date ") + format + QStringLiteral("»"));
    });
    button.setMenu(menu);
    button.setPopupMode(QToolButton::InstantPopup);
}

} // namespace TokenMenu
