#include "PathNames.h"

#include "PathCodec.h"

#include <QRandomGenerator>
#include <climits>
#include <unistd.h>

namespace PathNames {

QString lastComponent(const QString &path)
{
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith(u'/'))
        trimmed.chop(1);
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
    while (full.size() > 1 && full.endsWith(u'/'))
        full.chop(1);
    return full;
}

QByteArray folderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : path.left(slash);
}

QByteArray hiddenNameBeside(const QByteArray &path, const char *purpose)
{
    return folderOf(path) + "/.nomen-" + purpose + '-' + QByteArray::number(::getpid()) + '-'
           + QByteArray::number(QRandomGenerator::global()->generate(), 36);
}

} // namespace PathNames
