#include "MiscMethods.h"

#include "FileStatus.h"
#include "PathConversion.h"

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QMimeDatabase>
#include <QSettings>
#include <QStandardPaths>

using ROZ_PathConversion::pathPOSIX;

namespace {

QMimeType mimeTypeOf(const QString &posix)
{
    static const QMimeDatabase database;
    return database.mimeTypeForFile(posix);
}

// Reads one group of a desktop-style ini file as key -> value.
QHash<QString, QString> readGroup(const QString &file, const QString &group)
{
    QHash<QString, QString> values;
    QFile input(file);
    if (!input.open(QIODevice::ReadOnly | QIODevice::Text))
        return values;
    bool inGroup = false;
    for (const QByteArray &raw : input.readAll().split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.startsWith(u'[')) {
            inGroup = line == u'[' + group + u']';
        } else if (inGroup && line.contains(u'=') && !line.startsWith(u'#')) {
            values.insert(line.section(u'=', 0, 0).trimmed(), line.section(u'=', 1).trimmed());
        }
    }
    return values;
}

QStringList applicationDirectories()
{
    return QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
}

// mimeapps.list files, most personal first, as desktops read them.
QStringList mimeAppsLists()
{
    QStringList lists;
    for (const QString &config : QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation))
        lists.append(config + QStringLiteral("/mimeapps.list"));
    for (const QString &applications : applicationDirectories())
        lists.append(applications + QStringLiteral("/mimeapps.list"));
    return lists;
}

QString desktopEntryName(const QString &desktopId)
{
    for (const QString &directory : applicationDirectories()) {
        const QString file = directory + u'/' + desktopId;
        if (QFile::exists(file))
            return readGroup(file, QStringLiteral("Desktop Entry")).value(QStringLiteral("Name"));
    }
    return QString();
}

// The application the desktop opens this type with: the default that the
// mimeapps.list files pick, else the first that declares the type.
QString defaultApplicationFor(const QMimeType &type)
{
    QStringList names = {type.name()};
    names += type.aliases();
    names += type.allAncestors();
    for (const QString &name : names) {
        for (const QString &list : mimeAppsLists()) {
            for (const QString &id : readGroup(list, QStringLiteral("Default Applications")).value(name).split(u';', Qt::SkipEmptyParts)) {
                const QString app = desktopEntryName(id);
                if (!app.isEmpty())
                    return app;
            }
        }
        for (const QString &directory : applicationDirectories()) {
            const QString cache = directory + QStringLiteral("/mimeinfo.cache");
            for (const QString &id : readGroup(cache, QStringLiteral("MIME Cache")).value(name).split(u';', Qt::SkipEmptyParts)) {
                const QString app = desktopEntryName(id);
                if (!app.isEmpty())
                    return app;
            }
        }
    }
    return QString();
}

} // namespace

std::optional<QVariantMap> ROZ_MiscMethods::returnItemInfo(const QString &path)
{
    const QString posix = pathPOSIX(path);
    if (!FileStatus::of(posix, true))
        return std::nullopt;
    const QMimeType type = mimeTypeOf(posix);
    const QVariant visible = returnItemVisiblity(path);
    return QVariantMap{
        {QStringLiteral("LSItemContentType"), type.name()},
        {QStringLiteral("LSItemFileType"), returnFileType(path)},
        {QStringLiteral("LSItemFileCreator"), returnCreatorCode(path)},
        {QStringLiteral("LSItemExtension"), returnItemExtension(path)},
        {QStringLiteral("LSItemDisplayName"), returnItemDisplayedName(path)},
        {QStringLiteral("LSItemDisplayKind"), type.comment()},
        {QStringLiteral("LSItemRoleHandlerDisplayName"), defaultApplicationFor(type)},
        {QStringLiteral("LSItemIsInvisible"), !(visible.isValid() && visible.toBool())},
        {QStringLiteral("LSItemExtensionIsHidden"), false},
    };
}

QVariant ROZ_MiscMethods::returnItemUTI(const QString &path)
{
    const auto info = returnItemInfo(path);
    return info ? info->value(QStringLiteral("LSItemContentType")) : QVariant();
}

QVariant ROZ_MiscMethods::returnItemDisplayKind(const QString &path)
{
    const auto info = returnItemInfo(path);
    return info ? info->value(QStringLiteral("LSItemDisplayKind")) : QVariant();
}

QVariant ROZ_MiscMethods::returnItemDefaultApp(const QString &path)
{
    const auto info = returnItemInfo(path);
    return info ? info->value(QStringLiteral("LSItemRoleHandlerDisplayName")) : QVariant();
}

bool ROZ_MiscMethods::returnItemIsImage(const QString &path)
{
    const QString posix = pathPOSIX(path);
    if (!FileStatus::of(posix, true))
        return false;
    const QMimeType type = mimeTypeOf(posix);
    if (type.name().startsWith(QLatin1String("image/")) || type.inherits(QStringLiteral("application/pdf")))
        return true;
    static const QList<QByteArray> readable = QImageReader::supportedImageFormats();
    return readable.contains(returnItemExtension(path).toLower().toLatin1());
}
