#include "MiscMethods.h"

#include "FileStatus.h"
#include "HiddenItems.h"
#include "PathConversion.h"

QVariant MiscMethods::returnItemVisiblity(const QString &path)
{
    if (path.isNull())
        return false;
    const QString posix = PathConversion::pathPOSIX(path);
    const QString name = returnItemName(posix);
    if (name.startsWith(u'.'))
        return false;
    if (HiddenItems::isSystemPath(posix))
        return false;
    const auto finder = FinderInfo::read(posix);
    if (finder && (finder->flags & FinderInfo::InvisibleFlag))
        return false;
    // An entry of a hidden list answers nil, not NO; it reads as false.
    QString folder = posix.left(posix.size() - name.size());
    while (folder.size() > 1 && folder.endsWith(u'/'))
        folder.chop(1);
    if (HiddenItems::isListed(folder, name))
        return QVariant();
    return true;
}

