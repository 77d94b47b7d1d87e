#include "MiscMethods.h"

#include "DesktopEntries.h"
#include "FileStatus.h"
#include "PathConversion.h"

#include <QImageReader>
#include <QMimeDatabase>

using PathConversion::pathPOSIX;

namespace {

QMimeType mimeTypeOf(const QString &posix)
{
    static const QMimeDatabase database;
    return database.mimeTypeForFile(posix);
}

} // namespace

std::optional<QVariantMap> MiscMethods::returnItemInfo(const QString &path)
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
        {QStringLiteral("LSItemRoleHandlerDisplayName"), DesktopEntries::nameOf(DesktopEntries::defaultForFile(posix))},
        {QStringLiteral("LSItemIsInvisible"), !(visible.isValid() && visible.toBool())},
        {QStringLiteral("LSItemExtensionIsHidden"), false},
    };
}

QVariant MiscMethods::returnItemUTI(const QString &path)
{
    const auto info = returnItemInfo(path);
    return info ? info->value(QStringLiteral("LSItemContentType")) : QVariant();
}

QVariant MiscMethods::returnItemDisplayKind(const QString &path)
{
    const auto info = returnItemInfo(path);
    return info ? info->value(QStringLiteral("LSItemDisplayKind")) : QVariant();
}

QVariant MiscMethods::returnItemDefaultApp(const QString &path)
{
    const auto info = returnItemInfo(path);
    return info ? info->value(QStringLiteral("LSItemRoleHandlerDisplayName")) : QVariant();
}

bool MiscMethods::returnItemIsImage(const QString &path)
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
