#include "Processes.h"
#include "OpenFiles.h"

#include "PathCodec.h"

#include <QFile>

#include <algorithm>
#include <dirent.h>
#include <limits.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace Processes {

namespace {

QByteArray procPath(qint64 pid, const char *entry) { return "/proc/" + QByteArray::number(pid) + '/' + entry; }

bool isNumber(const char *name)
{
    if (!*name)
        return false;
    for (; *name; ++name)
        if (*name < '0' || *name > '9')
            return false;
    return true;
}

} // namespace

QList<qint64> ofThisUser()
{
    QList<qint64> pids;
    FolderEntries proc("/proc");
    const uid_t me = getuid();
    while (const dirent *entry = proc.next()) {
        if (!isNumber(entry->d_name))
            continue;
        struct stat status {};
        // A process may end between the listing and the look.
        if (fstatat(proc.descriptor(), entry->d_name, &status, 0) == 0 && status.st_uid == me)
            pids.append(QByteArray(entry->d_name).toLongLong());
    }
    std::sort(pids.begin(), pids.end());
    return pids;
}

QString programOf(qint64 pid)
{
    char target[PATH_MAX];
    const ssize_t length = readlink(procPath(pid, "exe").constData(), target, sizeof target);
    if (length <= 0)
        return QString();
    QByteArray path(target, length);
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    return PathCodec::decode(path);
}

QString commandOf(qint64 pid)
{
    QFile comm(QString::fromLatin1(procPath(pid, "comm")));
    if (!comm.open(QIODevice::ReadOnly))
        return QString();
    return PathCodec::decode(comm.readAll().trimmed());
}

} // namespace Processes
