#include "FileBytes.h"
#include "ErrnoText.h"

#include "PathCodec.h"
#include "PathNames.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace FileBytes {

namespace {

Contents failure(const QString &path, int error)
{
    const QString reason = errnoText(error);
    return {std::nullopt, reason, QStringLiteral("%1: %2").arg(path, reason)};
}

QString failed(const QByteArray &path, int error)
{
    return QStringLiteral("%1: %2").arg(PathCodec::decode(path), errnoText(error));
}

QString writeAll(int fd, const QByteArray &bytes, const QByteArray &name)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t written = ::write(fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return failed(name, written < 0 ? errno : EIO);
        done += written;
    }
    // A pipe or a device cannot be flushed, and need not be.
    return ::fsync(fd) == 0 || errno == EINVAL || errno == EROFS ? QString() : failed(name, errno);
}

// The extended attributes of the file being replaced, onto its new file.
QString copyAttributes(const QByteArray &from, int to, const QByteArray &name)
{
    QByteArray names(1024, '\0');
    ssize_t length;
    while ((length = ::listxattr(from.constData(), names.data(), size_t(names.size()))) < 0 && errno == ERANGE)
        names.resize(names.size() * 4);
    if (length < 0)
        return errno == ENOTSUP ? QString() : failed(from, errno);
    for (const QByteArray &attribute : names.left(length).split('\0')) {
        if (attribute.isEmpty())
            continue;
        QByteArray value(256, '\0');
        ssize_t size;
        while ((size = ::getxattr(from.constData(), attribute.constData(), value.data(), size_t(value.size()))) < 0
               && errno == ERANGE)
            value.resize(value.size() * 4);
        if (size < 0 && errno == ENODATA)
            continue;
        // Attributes of the system (security labels, ACLs) that a user may
        // not set are left to the system.
        if (size < 0 || (::fsetxattr(to, attribute.constData(), value.constData(), size_t(size), 0) != 0
                         && (attribute.startsWith("user.") || (errno != EPERM && errno != ENOTSUP && errno != EACCES))))
            return failed(name, errno);
    }
    return QString();
}

} // namespace

QString writeInPlace(const QString &path, const QByteArray &bytes, InPlace how)
{
    const QByteArray target = PathCodec::encode(path);
    if (target.isEmpty())
        return failed(target, ENOENT);
    // Without a reader a pipe refuses at once (ENXIO) instead of waiting.
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | (how == InPlace::Append ? O_APPEND : O_TRUNC);
    const int fd = ::open(target.constData(), flags, 0666);
    if (fd < 0)
        return failed(target, errno);
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    QString error = writeAll(fd, bytes, target);
    if (::close(fd) != 0 && error.isEmpty() && errno != EINTR)
        error = failed(target, errno);
    return error;
}

QString replaceContents(const QString &path, const QByteArray &bytes)
{
    QByteArray target = PathCodec::encode(path);
    if (target.isEmpty())
        return failed(target, ENOENT);
    struct stat info {};
    const bool existed = ::stat(target.constData(), &info) == 0;
    if (!existed && errno != ENOENT)
        return failed(target, errno);
    if (existed && S_ISDIR(info.st_mode))
        return failed(target, EISDIR);
    if (existed) {
        // The file a link names is the one replaced; the link stays.
        char *resolved = ::realpath(target.constData(), nullptr);
        if (!resolved)
            return failed(target, errno);
        target = resolved;
        ::free(resolved);
    }
    // A new file gets the permissions the user's umask gives; a replaced one
    // keeps its own.
    QByteArray temporary;
    int fd = -1;
    for (int attempt = 0; fd < 0 && attempt < 100; ++attempt) {
        temporary = PathNames::hiddenNameBeside(target, "write");
        fd = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, existed ? 0600 : 0666);
        if (fd < 0 && errno != EEXIST)
            return failed(PathNames::folderOf(target), errno);
    }
    if (fd < 0)
        return failed(PathNames::folderOf(target), EEXIST);
    QString error = !existed || ::fchmod(fd, info.st_mode & 07777) == 0 ? QString() : failed(target, errno);
    if (error.isEmpty() && existed)
        error = copyAttributes(target, fd, target);
    if (error.isEmpty())
        error = writeAll(fd, bytes, target);
    if (::close(fd) != 0 && error.isEmpty() && errno != EINTR)
        error = failed(target, errno);
    if (error.isEmpty() && ::rename(temporary.constData(), target.constData()) != 0)
        error = failed(target, errno);
    if (!error.isEmpty()) {
        ::unlink(temporary.constData());
        return error;
    }
    // The new name is on disk only once its folder is; a folder that cannot
    // be opened for reading cannot be flushed, and the rename stands.
    const int folder = ::open(PathNames::folderOf(target).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return QString();
    const int flushError = ::fsync(folder) == 0 ? 0 : errno;
    ::close(folder);
    return flushError ? failed(PathNames::folderOf(target), flushError) : QString();
}

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
