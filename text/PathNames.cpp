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
