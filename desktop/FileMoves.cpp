#include "FileMoves.h"

#include "PathCodec.h"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace FileMoves {

namespace {

int copyFile(const QByteArray &from, const QByteArray &to, const struct stat &info)
{
    const int in = open(from.constData(), O_RDONLY | O_CLOEXEC);
    if (in < 0)
        return errno;
    // O_EXCL: if the destination has appeared meanwhile, nothing is replaced.
    const int out = open(to.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, info.st_mode & 07777);
    if (out < 0) {
        const int error = errno;
        close(in);
        return error;
    }
    char buffer[1 << 16];
    int error = 0;
    for (;;) {
        const ssize_t got = read(in, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0) {
            error = got < 0 ? errno : 0;
            break;
        }
        for (ssize_t done = 0; done < got;) {
            const ssize_t written = write(out, buffer + done, size_t(got - done));
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0) {
                error = written < 0 ? errno : EIO;
                break;
            }
            done += written;
        }
        if (error)
            break;
    }
    if (!error && fsync(out) != 0)
        error = errno;
    const timespec times[2] = {info.st_atim, info.st_mtim};
    futimens(out, times);
    close(in);
    if (close(out) != 0 && !error)
        error = errno;
    return error;
}

int removeTree(const QByteArray &path)
{
    struct stat info;
    if (lstat(path.constData(), &info) != 0)
        return errno;
    if (!S_ISDIR(info.st_mode))
        return unlink(path.constData()) == 0 ? 0 : errno;
    if (DIR *directory = opendir(path.constData())) {
        while (const dirent *entry = readdir(directory)) {
            const QByteArray name(entry->d_name);
            if (name != "." && name != "..")
                removeTree(path + '/' + name);
        }
        closedir(directory);
    }
    return rmdir(path.constData()) == 0 ? 0 : errno;
}

// Copies an item with everything in it; the destination must not exist.
int copyTree(const QByteArray &from, const QByteArray &to)
{
    struct stat info;
    if (lstat(from.constData(), &info) != 0)
        return errno;
    if (S_ISLNK(info.st_mode)) {
        char target[4096];
        const ssize_t length = readlink(from.constData(), target, sizeof target - 1);
        if (length < 0)
            return errno;
        target[length] = 0;
        return symlink(target, to.constData()) == 0 ? 0 : errno;
    }
    if (S_ISREG(info.st_mode))
        return copyFile(from, to, info);
    if (!S_ISDIR(info.st_mode))
        return ENOTSUP;
    if (mkdir(to.constData(), info.st_mode & 07777) != 0)
        return errno;
    DIR *directory = opendir(from.constData());
    if (!directory)
        return errno;
    int error = 0;
    while (const dirent *entry = readdir(directory)) {
        const QByteArray name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        if ((error = copyTree(from + '/' + name, to + '/' + name)) != 0)
            break;
    }
    closedir(directory);
    return error;
}

} // namespace

int moveWithoutReplacing(const QString &from, const QString &to)
{
    const QByteArray source = PathCodec::encode(from);
    const QByteArray destination = PathCodec::encode(to);
    if (source.isEmpty() || destination.isEmpty())
        return ENOENT;
    if (renameat2(AT_FDCWD, source.constData(), AT_FDCWD, destination.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EXDEV)
        return errno;
    // Another file system: copy, then remove the original only once the
    // copy is complete. A failed copy is removed and the original kept.
    struct stat existing;
    if (lstat(destination.constData(), &existing) == 0)
        return EEXIST;
    if (const int error = copyTree(source, destination)) {
        if (error != EEXIST)
            removeTree(destination);
        return error;
    }
    return removeTree(source);
}

} // namespace FileMoves
