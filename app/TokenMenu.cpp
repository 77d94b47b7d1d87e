#include "TokenMenu.h"

#include "DateTokens.h"
#include "MetadataTokens.h"

#include <QCoreApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <vector>

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
    // What files say of themselves, by kind of file.
    using Metadata::Field;
    const std::pair<const char *, std::vector<std::pair<const char *, Field>>> kinds[] = {
        {"Photograph",
         {{"Camera", Field::Camera}, {"Make", Field::Make}, {"Model", Field::Model}, {"Lens", Field::Lens}, {"ISO", Field::Iso},
          {"Aperture", Field::Aperture}, {"Exposure time", Field::Exposure}, {"Focal length", Field::Focal},
          {"Width", Field::Width}, {"Height", Field::Height}}},
        {"Music",
         {{"Artist", Field::Artist}, {"Album artist", Field::AlbumArtist}, {"Album", Field::Album}, {"Title", Field::Title},
          {"Track", Field::Track}, {"Disc", Field::Disc}, {"Year", Field::Year}, {"Genre", Field::Genre}}},
        {"Recording", {{"Duration", Field::Duration}, {"Resolution", Field::Resolution}}},
    };
    for (const auto &[kind, fields] : kinds) {
        QMenu *submenu = menu->addMenu(ui(kind));
        submenu->setObjectName(menu->objectName() + u'_' + QString::fromLatin1(kind).toLower());
        for (const auto &[title, field] : fields) {
            const QString token = MetadataTokens::written(field);
            add(submenu, ui(title) + u'\t' + token, token);
        }
    }
    menu->addAction(ui("Tag by its key…"), &field, [&field] {
        bool chosen = false;
        const QString key = QInputDialog::getText(
            field.window(), ui("Tag"), ui("The tag's exiv2 key (Exif.Photo.LensModel, Xmp.dc.title, Iptc.Application2.City):"),
            QLineEdit::Normal, QStringLiteral("Exif.Photo.LensModel"), &chosen);
        if (chosen && !key.trimmed().isEmpty())
            insert(field, QStringLiteral("«tag ") + key.trimmed() + QStringLiteral("»"));
    });
    button.setMenu(menu);
    button.setPopupMode(QToolButton::InstantPopup);
}

} // namespace TokenMenu
