#include "FileMoves.h"
#include "OpenFiles.h"
#include "ErrnoText.h"

#include "PathCodec.h"
#include "PathNames.h"

#include <QList>
#include <cerrno>
#include <memory>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace FileMoves {

namespace {

QString shown(const QByteArray &path)
{
    return PathCodec::decode(path);
}

// The first failure of a copy, with the file it concerns.
struct Failure {
    int error = 0;
    QString detail;
    explicit operator bool() const { return error != 0; }
};

Failure failed(int error, const QString &what, const QByteArray &path)
{
    return {error, QStringLiteral("%1 \"%2\": %3").arg(what, shown(path), errnoText(error))};
}

Failure flushed(const QByteArray &folder)
{
    const int error = flushFolder(folder);
    return error ? failed(error, QStringLiteral("cannot flush the folder"), folder) : Failure{};
}

// Extended attributes go with the copy. Those of the user must arrive, or
// the copy fails, unless the caller leaves behind what the destination
// cannot hold; the system's own (security, trusted, ACLs) are copied where
// the destination allows it.
Failure copyAttributes(const QByteArray &from, const QByteArray &to, const Options &options)
{
    QList<QByteArray> leftBehind;
    QByteArray names(1024, '\0');
    ssize_t length;
    while ((length = llistxattr(from.constData(), names.data(), size_t(names.size()))) < 0 && errno == ERANGE)
        names.resize(names.size() * 4);
    if (length < 0)
        return errno == ENOTSUP ? Failure{} : failed(errno, QStringLiteral("cannot read the extended attributes of"), from);
    for (const QByteArray &name : names.left(length).split('\0')) {
        if (name.isEmpty())
            continue;
        QByteArray value(256, '\0');
        ssize_t size;
        while ((size = lgetxattr(from.constData(), name.constData(), value.data(), size_t(value.size()))) < 0 && errno == ERANGE)
            value.resize(value.size() * 4);
        if (size < 0) {
            if (errno == ENODATA)
                continue; // removed meanwhile
            return failed(errno, QStringLiteral("cannot read the extended attribute %1 of").arg(QString::fromLatin1(name)), from);
        }
        if (lsetxattr(to.constData(), name.constData(), value.constData(), size_t(size), 0) == 0)
            continue;
        const int error = errno;
        const bool cannotHold = error == EPERM || error == ENOTSUP || error == EACCES || error == E2BIG || error == ENOSPC;
        if (cannotHold && !name.startsWith("user."))
            continue;
        if (cannotHold && options.attributesLeftBehind) {
            leftBehind.append(name);
            continue;
        }
        return failed(error, QStringLiteral("cannot keep the extended attribute %1 on").arg(QString::fromLatin1(name)), to);
    }
    if (!leftBehind.isEmpty())
        options.attributesLeftBehind(from, leftBehind);
    return {};
}

// Owner where allowed (only a privileged user may give files away), then
// the permissions, which a change of owner may have cleared in part.
Failure copyOwnerAndMode(const QByteArray &to, const struct stat &info)
{
    if (lchown(to.constData(), info.st_uid, info.st_gid) != 0 && errno != EPERM)
        return failed(errno, QStringLiteral("cannot set the owner of"), to);
    if (!S_ISLNK(info.st_mode) && chmod(to.constData(), info.st_mode & 07777) != 0)
        return failed(errno, QStringLiteral("cannot set the permissions of"), to);
    return {};
}

Failure copyTimes(const QByteArray &to, const struct stat &info)
{
    const timespec times[2] = {info.st_atim, info.st_mtim};
    if (utimensat(AT_FDCWD, to.constData(), times, AT_SYMLINK_NOFOLLOW) != 0)
        return failed(errno, QStringLiteral("cannot set the times of"), to);
    return {};
}

// The bytes by the cheapest way the file systems allow: a shared-extent
// clone, then an in-kernel copy, then reads and writes.
Failure copyBytes(int in, int out, const QByteArray &from, const QByteArray &to)
{
    if (ioctl(out, FICLONE, in) == 0)
        return {};
    for (;;) {
        const ssize_t copied = copy_file_range(in, nullptr, out, nullptr, size_t(1) << 30, 0);
        if (copied == 0)
            return {};
        if (copied > 0 || errno == EINTR)
            continue;
        // Not between these file systems: read and write, if nothing was copied yet.
        const bool unsupported = errno == EXDEV || errno == ENOSYS || errno == EINVAL || errno == EOPNOTSUPP;
        if (unsupported && lseek(out, 0, SEEK_CUR) == 0)
            break;
        return failed(errno, QStringLiteral("cannot copy into"), to);
    }
    static constexpr size_t bufferSize = 1 << 16;
    auto buffer = std::make_unique<char[]>(bufferSize);
    for (;;) {
        const ssize_t got = read(in, buffer.get(), bufferSize);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return failed(errno, QStringLiteral("cannot read"), from);
        if (got == 0)
            return {};
        if (const int error = writeAll(out, buffer.get(), size_t(got)))
            return failed(error, QStringLiteral("cannot write"), to);
    }
}

Failure copyContents(const QByteArray &from, const QByteArray &to, bool flush)
{
    const FileDescriptor in(open(from.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (!in.isOpen())
        return failed(errno, QStringLiteral("cannot open"), from);
    // O_EXCL: if the destination has appeared meanwhile, nothing is replaced.
    FileDescriptor out(open(to.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!out.isOpen())
        return failed(errno, QStringLiteral("cannot create"), to);
    Failure failure = copyBytes(in.get(), out.get(), from, to);
    if (!failure && flush && fsync(out.get()) != 0)
        failure = failed(errno, QStringLiteral("cannot flush"), to);
    if (const int error = out.close(); error && !failure)
        failure = failed(error, QStringLiteral("cannot write"), to);
    return failure;
}

Failure copyLink(const QByteArray &from, const QByteArray &to, const struct stat &info)
{
    QByteArray target(qsizetype(info.st_size) + 1, '\0');
    const ssize_t length = readlink(from.constData(), target.data(), size_t(target.size()));
    if (length < 0)
        return failed(errno, QStringLiteral("cannot read the link"), from);
    if (length >= target.size())
        return failed(EAGAIN, QStringLiteral("the link changed while it was read:"), from);
    target.truncate(length);
    if (symlink(target.constData(), to.constData()) != 0)
        return failed(errno, QStringLiteral("cannot create"), to);
    return {};
}

Failure copyTree(const QByteArray &from, const QByteArray &to, bool flush, const Options &options);

Failure copyFolder(const QByteArray &from, const QByteArray &to, bool flush, const Options &options)
{
    if (mkdir(to.constData(), 0700) != 0)
        return failed(errno, QStringLiteral("cannot create"), to);
    FolderEntries folder(from);
    if (!folder.isOpen())
        return failed(folder.error(), QStringLiteral("cannot read the folder"), from);
    Failure failure;
    while (const dirent *entry = folder.next()) {
        const QByteArray name(entry->d_name);
        if ((failure = copyTree(from + '/' + name, to + '/' + name, flush, options)))
            break;
    }
    if (!failure && folder.error() != 0)
        failure = failed(folder.error(), QStringLiteral("cannot read the folder"), from);
    return failure || !flush ? failure : flushed(to);
}

// Copies an item with everything in it; the destination must not exist.
// With `flush`, every file and folder of the copy is on disk before the
// answer.
Failure copyTree(const QByteArray &from, const QByteArray &to, bool flush, const Options &options)
{
    struct stat info;
    if (lstat(from.constData(), &info) != 0)
        return failed(errno, QStringLiteral("cannot read"), from);
    Failure failure;
    if (S_ISLNK(info.st_mode))
        failure = copyLink(from, to, info);
    else if (S_ISREG(info.st_mode))
        failure = copyContents(from, to, flush);
    else if (S_ISDIR(info.st_mode))
        failure = copyFolder(from, to, flush, options);
    else
        failure = failed(ENOTSUP, QStringLiteral("cannot copy this kind of item:"), from);
    if (!failure && !S_ISLNK(info.st_mode))
        failure = copyAttributes(from, to, options);
    if (!failure)
        failure = copyOwnerAndMode(to, info);
    if (!failure)
        failure = copyTimes(to, info);
    return failure;
}

// Removes an item with everything in it, stopping at the first failure.
Failure removeTree(const QByteArray &path)
{
    struct stat info;
    if (lstat(path.constData(), &info) != 0)
        return failed(errno, QStringLiteral("cannot read"), path);
    if (!S_ISDIR(info.st_mode))
        return unlink(path.constData()) == 0 ? Failure{} : failed(errno, QStringLiteral("cannot remove"), path);
    FolderEntries folder(path);
    if (!folder.isOpen())
        return failed(folder.error(), QStringLiteral("cannot read the folder"), path);
    Failure failure;
    while (const dirent *entry = folder.next())
        if ((failure = removeTree(path + '/' + QByteArray(entry->d_name))))
            break;
    if (!failure && rmdir(path.constData()) != 0)
        failure = failed(errno, QStringLiteral("cannot remove"), path);
    return failure;
}

// Where RENAME_NOREPLACE is unknown: a file gets its new name as a hard
// link, which fails rather than replace anything, and then loses the old
// one; a folder (or a file where hard links are not allowed) is renamed
// once its destination is seen to be free.
int renameWithoutTheFlag(const QByteArray &from, const QByteArray &to)
{
    struct stat info;
    if (lstat(from.constData(), &info) != 0)
        return errno;
    if (!S_ISDIR(info.st_mode)) {
        if (link(from.constData(), to.constData()) == 0) {
            if (unlink(from.constData()) == 0)
                return 0;
            const int error = errno;
            unlink(to.constData()); // back to one name: the move did not happen
            return error;
        }
        if (errno != EPERM && errno != ENOTSUP && errno != EMLINK)
            return errno;
    }
    struct stat existing;
    if (lstat(to.constData(), &existing) == 0)
        return EEXIST;
    if (errno != ENOENT)
        return errno;
    return rename(from.constData(), to.constData()) == 0 ? 0 : errno;
}

Result moveAcross(const QByteArray &from, const QByteArray &to, const Options &options)
{
    struct stat existing;
    if (lstat(to.constData(), &existing) == 0)
        return {EEXIST, {}, false};
    Failure failure = copyTree(from, to, true, options);
    if (!failure)
        failure = flushed(PathNames::folderOf(to));
    if (!failure && options.copied)
        if (const int error = options.copied(to))
            failure = failed(error, QStringLiteral("the copy was not recorded, so it was removed again:"), to);
    if (failure) {
        // A copy that is not whole goes; one we did not make stays.
        if (failure.error != EEXIST)
            removeTree(to);
        return {failure.error, failure.detail, false};
    }
    if (const Failure removal = removeTree(from))
        return {removal.error,
                QStringLiteral("\"%1\" was copied to \"%2\", but the original could not be removed (%3): both copies are there")
                    .arg(shown(from), shown(to), removal.detail),
                true};
    return {};
}

} // namespace

Result move(const QString &from, const QString &to, const Options &options)
{
    return move(PathCodec::encode(from), PathCodec::encode(to), options);
}

Result move(const QByteArray &source, const QByteArray &destination, const Options &options)
{
    if (source.isEmpty() || destination.isEmpty())
        return {ENOENT, {}, false};
    int error = options.simulatedRenameError;
    if (error == 0)
        error = renameat2(AT_FDCWD, source.constData(), AT_FDCWD, destination.constData(), RENAME_NOREPLACE) == 0 ? 0 : errno;
    if (error == EINVAL || error == ENOSYS)
        error = renameWithoutTheFlag(source, destination);
    if (error == EXDEV)
        return moveAcross(source, destination, options);
    return {error, {}, false};
}

QByteArray freeNameBeside(const QByteArray &path, const char *purpose)
{
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QByteArray name = PathNames::hiddenNameBeside(path, purpose);
        struct stat taken;
        if (lstat(name.constData(), &taken) != 0 && errno == ENOENT)
            return name;
    }
    return QByteArray();
}

// The copy is made under a hidden name beside its destination and takes
// the destination's name only when whole, so an interrupted copy is never
// mistaken for a complete one.
Result copy(const QByteArray &from, const QByteArray &to, const Options &options)
{
    if (from.isEmpty() || to.isEmpty())
        return {ENOENT, {}, false};
    struct stat existing;
    if (lstat(to.constData(), &existing) == 0)
        return {EEXIST, {}, false};
    const QByteArray staging = freeNameBeside(to, "copying");
    if (staging.isEmpty())
        return {EEXIST, {}, false};
    Failure failure = copyTree(from, staging, false, options);
    if (!failure) {
        const Result placed = move(staging, to);
        if (placed.error)
            failure = failed(placed.error, QStringLiteral("cannot give the copy its name"), to);
    }
    if (failure)
        removeTree(staging); // ours: its name was free

    return {failure.error, failure.detail, false};
}

Result remove(const QByteArray &path)
{
    const Failure failure = removeTree(path);
    return {failure.error, failure.detail, false};
}

int moveWithoutReplacing(const QString &from, const QString &to)
{
    const Result result = move(from, to);
    return result.error;
}

} // namespace FileMoves
