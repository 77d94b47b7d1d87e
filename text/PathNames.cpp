#include "PathNames.h"

#include <QRandomGenerator>
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
