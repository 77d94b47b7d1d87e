#include "HiddenItems.h"

#include "FileStatus.h"
#include "PathCodec.h"

#include <QHash>
#include <QMutex>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace HiddenItems {

namespace {

// A small file's bytes; empty when it cannot be read.
QByteArray contentsOf(const QByteArray &path)
{
    QByteArray contents;
    const int descriptor = open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return contents;
    char buffer[4096];
    for (ssize_t got; (got = read(descriptor, buffer, sizeof buffer)) != 0;) {
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            break;
        contents.append(buffer, got);
    }
    close(descriptor);
    return contents;
}

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
        for (const QByteArray &line : contentsOf(PathCodec::encode(hiddenFile)).split('\n'))
            list.names.insert(PathCodec::decode(line));
        list.modified = status->modified;
        list.size = qint64(status->size);
    }
    return list.names;
}

QString ownList(const QString &folder)
{
    return (folder.endsWith(u'/') ? folder : folder + u'/') + QStringLiteral(".hidden");
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
