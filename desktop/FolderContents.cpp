#include "MiscMethods.h"

#include "FileStatus.h"
#include "PathConversion.h"

#include <QDir>

namespace {

bool isVisible(const QString &path)
{
    const QVariant visible = MiscMethods::returnItemVisiblity(path);
    return visible.isValid() && visible.toBool();
}

// Walks a folder deeply: names in order, each item before its contents.
void enumerate(const QString &base, const QString &relative, bool withInvisibles, QVariantList &contents,
               QVariantList &subfolders)
{
    const QString folder = relative.isEmpty() ? base : base + u'/' + relative;
    QStringList names = FileStatus::entryNames(folder).value_or(QStringList());
    names.sort();
    for (const QString &name : names) {
        const QString relativeName = relative.isEmpty() ? name : relative + u'/' + name;
        const QString full = base + u'/' + relativeName;
        const auto status = FileStatus::of(full, false);
        const bool folderItem = status && status->isDirectory();
        if (!withInvisibles && !isVisible(full)) {
            // Skipped, but still entered: the visible items inside an
            // invisible folder are listed here under their relative paths.
            if (folderItem)
                enumerate(base, relativeName, withInvisibles, contents, subfolders);
            continue;
        }
        if (folderItem)
            subfolders.append(MiscMethods::returnCompleteFolderContents(full + u'/', withInvisibles));
        contents.append(relativeName);
    }
}

} // namespace

QVariantMap MiscMethods::returnCompleteFolderContents(const QString &path, bool withInvisibles)
{
    const QString posix = PathConversion::pathPOSIX(path);
    QVariantList contents;
    QVariantList subfolders;
    QString base = posix;
    while (base.size() > 1 && base.endsWith(u'/'))
        base.chop(1);
    if (returnItemIsFolder(posix) || (FileStatus::of(base, true) && FileStatus::of(base, true)->isDirectory()))
        enumerate(base, QString(), withInvisibles, contents, subfolders);
    return {{QStringLiteral("_path"), posix},
            {QStringLiteral("_contents"), contents},
            {QStringLiteral("_subfolders"), subfolders}};
}
