#include "FileBytes.h"

#include "PathCodec.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace FileBytes {

namespace {

Contents failure(const QString &path, int error)
{
    const QString reason = QString::fromLocal8Bit(std::strerror(error));
    return {std::nullopt, reason, QStringLiteral("%1: %2").arg(path, reason)};
}

} // namespace

Contents read(const QString &path)
{
    const int fd = ::open(PathCodec::encode(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return failure(path, errno);
    struct stat info {};
    if (::fstat(fd, &info) != 0) {
        const int error = errno;
        ::close(fd);
        return failure(path, error);
    }
    if (S_ISDIR(info.st_mode)) {
        ::close(fd);
        return failure(path, EISDIR);
    }
    // The size is a hint only: the file may grow or shrink while it is read.
    QByteArray bytes;
    bytes.reserve(qsizetype(info.st_size) + 1);
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            const int error = errno;
            ::close(fd);
            return failure(path, error);
        }
        if (got == 0)
            break;
        bytes.append(buffer, got);
    }
    ::close(fd);
    return {bytes, QString(), QString()};
}

} // namespace FileBytes
