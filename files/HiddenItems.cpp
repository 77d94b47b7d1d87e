#include "HiddenItems.h"

#include "PathNames.h"

#include "FileBytes.h"
#include "FileStatus.h"
#include "PathCodec.h"

#include <QHash>
#include <QMutex>

namespace HiddenItems {

namespace {

struct HiddenList {
    QDateTime modified;
    qint64 size = -1;
    QSet<QString> names;
};

// A listing asks about the same list for every item of a folder.
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
        list.names.clear();
        for (const QByteArray &line : FileBytes::read(hiddenFile).bytes.value_or(QByteArray()).split('\n'))
            list.names.insert(PathCodec::decode(line));
        list.modified = status->modified;
        list.size = qint64(status->size);
    }
    return list.names;
}

QString ownList(const QString &folder)
{
    return PathNames::joined(folder, QStringLiteral(".hidden"));
}

} // namespace

bool isSystemPath(const QString &path)
{
    static const QSet<QString> paths = {"/var", "/tmp", "/Network", "/net", "/mach", "/mach.sym", "/home", "/etc", "/dev"};
    return paths.contains(path);
}

QSet<QString> listedIn(const QString &folder)
{
    QSet<QString> names = namesIn(QStringLiteral("/.hidden"));
    if (!folder.isEmpty())
        names.unite(namesIn(ownList(folder)));
    return names;
}

bool isListed(const QString &folder, const QString &name)
{
    return namesIn(QStringLiteral("/.hidden")).contains(name) || (!folder.isEmpty() && namesIn(ownList(folder)).contains(name));
}

} // namespace HiddenItems
