#include "PathNames.h"

#include "PathCodec.h"

#include <QRandomGenerator>
#include <climits>
#include <unistd.h>

namespace PathNames {

QString joined(const QString &folder, const QString &name)
{
    return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

QString withoutTrailingSlashes(QString path)
{
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

QByteArray withoutTrailingSlashes(QByteArray path)
{
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    return path;
}

QString lastComponent(const QString &path)
{
    const QString trimmed = withoutTrailingSlashes(path);
    if (trimmed == QLatin1String("/"))
        return trimmed;
    return trimmed.section(u'/', -1);
}

QString absolute(const QString &path)
{
    QString full = path;
    if (!full.startsWith(u'/')) {
        char here[PATH_MAX];
        if (getcwd(here, sizeof here))
            full = PathCodec::decode(here) + (here[1] ? QStringLiteral("/") : QString()) + full;
    }
    return withoutTrailingSlashes(full);
}

QByteArray folderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : path.left(slash);
}

QString folderOf(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash < 0 ? QStringLiteral(".") : slash == 0 ? QStringLiteral("/") : path.left(slash);
}

QByteArray hiddenNameBeside(const QByteArray &path, const char *purpose)
{
    return folderOf(path) + "/.nomen-" + purpose + '-' + QByteArray::number(::getpid()) + '-'
           + QByteArray::number(QRandomGenerator::global()->generate(), 36);
}

} // namespace PathNames

namespace PathNames {

QString fittedBefore(const QString &stem, const QString &after, qsizetype bytes)
{
    // A UTF-16 code unit is at most three bytes: most names need no encoding here.
    if ((stem.size() + after.size()) * 3 <= bytes)
        return stem;
    const qsizetype room = bytes - PathCodec::encode(after).size();
    if (room <= 0)
        return QString();
    qsizetype used = 0;
    qsizetype end = 0;
    while (end < stem.size()) {
        // A pair of surrogates is one character; a lone one stands for a
        // byte of a name that is not UTF-8 and is one byte on disk.
        const qsizetype units = stem[end].isHighSurrogate() && end + 1 < stem.size() && stem[end + 1].isLowSurrogate() ? 2 : 1;
        const qsizetype size = PathCodec::encode(stem.mid(end, units)).size();
        if (used + size > room)
            break;
        used += size;
        end += units;
    }
    return stem.left(end);
}

} // namespace PathNames
