#include "UiStrings.h"

#include "InstalledData.h"
#include "PathCodec.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

#ifndef NOMEN_TRANSLATIONS_DIR
#define NOMEN_TRANSLATIONS_DIR ""
#endif

namespace UiStrings {

void install(QCoreApplication &application)
{
    // English first, then the user's language over it: a key no table
    // knows answers itself.
    QString from = PathCodec::decode(qgetenv("NOMEN_TRANSLATIONS"));
    if (from.isEmpty())
        if (const QString installed = InstalledData::folder(); !installed.isEmpty())
            from = installed + QStringLiteral("/translations");
    if (from.isEmpty())
        from = QStringLiteral(NOMEN_TRANSLATIONS_DIR);
    auto *english = new QTranslator(&application);
    if (english->load(QStringLiteral("ui_en"), from))
        application.installTranslator(english);
    auto *local = new QTranslator(&application);
    if (local->load(QLocale(), QStringLiteral("ui"), QStringLiteral("_"), from) && !local->language().startsWith(u'e'))
        application.installTranslator(local);
}

} // namespace UiStrings
