#include "MiscMethods.h"

#include "FileStatus.h"
#include "PathConversion.h"

#include <QFile>
#include <QHash>
#include <QMutex>
#include <QSet>

namespace {

// Names listed in a ".hidden" file, read again only when it changes:
// listing a large folder asks about the same file for every item.
struct HiddenList {
    QDateTime modified;
    qint64 size = -1;
    QSet<QString> names;
};

QSet<QString> namesIn(const QString &hiddenFile)
{
    static QMutex lock;
    static QHash<QString, HiddenList> cache;
    const auto status = FileStatus::of(hiddenFile, true);
    QMutexLocker guard(&lock);
    if (!status) {
        cache.remove(hiddenFile);
        return {};
    }
    HiddenList &list = cache[hiddenFile];
    if (list.modified != status->modified || list.size != qint64(status->size)) {
        QFile file(hiddenFile);
        list.names.clear();
        if (file.open(QIODevice::ReadOnly | QIODevice::Text))
            for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n'))
                list.names.insert(line);
        list.modified = status->modified;
        list.size = qint64(status->size);
    }
    return list.names;
}

bool listedIn(const QString &hiddenFile, const QString &name)
{
    return namesIn(hiddenFile).contains(name);
}

} // namespace

bool listedAsHidden(const QString &folder, const QString &name);

namespace {

const QSet<QString> &systemPaths()
{
    static const QSet<QString> paths = {"/var", "/tmp", "/Network", "/net", "/mach", "/mach.sym", "/home", "/etc", "/dev"};
    return paths;
}

} // namespace

QVariant ROZ_MiscMethods::returnItemVisiblity(const QString &path)
{
    if (path.isNull())
        return false;
    const QString posix = ROZ_PathConversion::pathPOSIX(path);
    const QString name = returnItemName(posix);
    if (name.startsWith(u'.'))
        return false;
    if (systemPaths().contains(posix))
        return false;
    const auto finder = FinderInfo::read(posix);
    if (finder && (finder->flags & FinderInfo::InvisibleFlag))
        return false;
    // An entry of a hidden list answers nil, not NO; it reads as false.
    QString folder = posix.left(posix.size() - name.size());
    while (folder.size() > 1 && folder.endsWith(u'/'))
        folder.chop(1);
    if (listedAsHidden(folder, name))
        return QVariant();
    return true;
}

QSet<QString> hiddenNames(const QString &folder)
{
    QSet<QString> names = namesIn(QStringLiteral("/.hidden"));
    if (!folder.isEmpty())
        names.unite(namesIn((folder.endsWith(u'/') ? folder : folder + u'/') + QStringLiteral(".hidden")));
    return names;
}

bool listedAsHidden(const QString &folder, const QString &name)
{
    return listedIn(QStringLiteral("/.hidden"), name)
           || (!folder.isEmpty() && listedIn((folder.endsWith(u'/') ? folder : folder + u'/') + QStringLiteral(".hidden"), name));
}
