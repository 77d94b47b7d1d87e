#include "FileMoves.h"
#include "PathCodec.h"

#include <QFile>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>

namespace FileMoves {

int moveWithoutReplacing(const QString &from, const QString &to)
{
    const QByteArray source = PathCodec::encode(from);
    const QByteArray destination = PathCodec::encode(to);
    if (source.isEmpty() || destination.isEmpty())
        return ENOENT;
    if (renameat2(AT_FDCWD, source.constData(), AT_FDCWD, destination.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    return errno;
}

} // namespace FileMoves
