#include "FileStatus.h"
#include "OpenFiles.h"
#include "PathCodec.h"

#include <QFile>
#include <QHash>
#include <QMutex>
#include <QtEndian>
#include <atomic>
#include <cstdint>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <linux/fs.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

bool ItemStatus::isDirectory() const
{
    return S_ISDIR(mode);
}

bool ItemStatus::isSymbolicLink() const
{
    return S_ISLNK(mode);
}

namespace {

QDateTime fromTimestamp(const statx_timestamp &time)
{
    return QDateTime::fromMSecsSinceEpoch(qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000);
}

} // namespace

namespace FileStatus {

std::optional<ItemStatus> of(const QString &path, bool followLinks)
{
    const QByteArray bytes = PathCodec::encode(path);
    struct statx info {};
    const int flags = AT_STATX_SYNC_AS_STAT | (followLinks ? 0 : AT_SYMLINK_NOFOLLOW);
    if (bytes.isEmpty() || statx(AT_FDCWD, bytes.constData(), flags, STATX_BASIC_STATS | STATX_BTIME, &info) != 0)
        return std::nullopt;
    ItemStatus status;
    status.mode = info.stx_mode;
    status.owner = info.stx_uid;
    status.group = info.stx_gid;
    status.size = info.stx_size;
    status.inode = info.stx_ino;
    status.device = makedev(info.stx_dev_major, info.stx_dev_minor);
    status.links = info.stx_nlink;
    status.modified = fromTimestamp(info.stx_mtime);
    if (info.stx_mask & STATX_BTIME)
        status.created = fromTimestamp(info.stx_btime);
    if (info.stx_attributes_mask & STATX_ATTR_IMMUTABLE)
        status.immutable = (info.stx_attributes & STATX_ATTR_IMMUTABLE) != 0;
    if (info.stx_attributes_mask & STATX_ATTR_APPEND)
        status.appendOnly = (info.stx_attributes & STATX_ATTR_APPEND) != 0;
    return status;
}

std::optional<QStringList> entryNames(const QString &folder)
{
    FolderEntries directory(PathCodec::encode(folder));
    if (!directory.isOpen())
        return std::nullopt;
    QStringList names;
    while (const dirent *entry = directory.next())
        names.append(PathCodec::decode(QByteArray(entry->d_name)));
    return names;
}

QString ownerName(uid_t uid)
{
    // Listing a large folder asks for the same few names again and again.
    static QMutex lock;
    static QHash<uid_t, QString> names;
    QMutexLocker guard(&lock);
    if (const auto found = names.constFind(uid); found != names.constEnd())
        return *found;
    const passwd *entry = getpwuid(uid);
    return names[uid] = entry ? PathCodec::decode(entry->pw_name) : QString::number(uid);
}

QString groupName(gid_t gid)
{
    static QMutex lock;
    static QHash<gid_t, QString> names;
    QMutexLocker guard(&lock);
    if (const auto found = names.constFind(gid); found != names.constEnd())
        return *found;
    const group *entry = getgrgid(gid);
    return names[gid] = entry ? PathCodec::decode(entry->gr_name) : QString::number(gid);
}

std::optional<Flags> flags(const QString &path)
{
    // Only files and folders are opened: opening a device or a pipe could
    // have effects of its own.
    const auto status = of(path, true);
    if (!status)
        return std::nullopt;
    if (status->immutable && status->appendOnly)
        return Flags{*status->immutable, *status->appendOnly};
    if (!S_ISREG(status->mode) && !S_ISDIR(status->mode))
        return Flags{};
    const FileDescriptor fd(open(PathCodec::encode(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!fd.isOpen())
        return std::nullopt;
    int bits = 0;
    if (ioctl(fd.get(), FS_IOC_GETFLAGS, &bits) != 0)
        return Flags{};
    return Flags{(bits & FS_IMMUTABLE_FL) != 0, (bits & FS_APPEND_FL) != 0};
}

} // namespace FileStatus

namespace FinderInfo {

namespace {
const char *const attribute = "user.com.apple.FinderInfo";
constexpr int infoSize = 32;

std::optional<Info> decoded(const unsigned char *bytes, long size)
{
    if (size < 10)
        return std::nullopt;
    return Info{qFromBigEndian<quint32>(bytes), qFromBigEndian<quint32>(bytes + 4), qFromBigEndian<quint16>(bytes + 8)};
}

} // namespace

std::optional<Info> read(const QString &path, bool followLinks)
{
    return read(PathCodec::encode(path), followLinks);
}

std::optional<Info> read(const QByteArray &name, bool followLinks)
{
    unsigned char bytes[infoSize];
    const ssize_t got = followLinks ? getxattr(name.constData(), attribute, bytes, sizeof bytes)
                                    : lgetxattr(name.constData(), attribute, bytes, sizeof bytes);
    return decoded(bytes, got);
}

std::optional<Info> readAt(int folder, const char *name, const QByteArray &path)
{
    // getxattrat (Linux 6.13) reads the attribute by the item's name in its
    // folder, as statx does, instead of walking the whole path again: in a
    // listing that is a third of each item's cost. Older kernels, and
    // sandboxes that refuse system calls they do not know, answer ENOSYS or
    // EPERM (a user attribute is never refused with EPERM), and the whole
    // path is used from then on.
    static std::atomic<bool> byFolder{true};
    if (byFolder.load(std::memory_order_relaxed)) {
        constexpr long getxattrat = 464; // the shared number on every architecture but alpha
        struct {
            quint64 value;
            quint32 size;
            quint32 flags;
        } arguments;
        unsigned char bytes[infoSize];
        arguments = {quint64(reinterpret_cast<uintptr_t>(bytes)), sizeof bytes, 0};
        const long got = syscall(getxattrat, folder, name, AT_SYMLINK_NOFOLLOW, attribute, &arguments, sizeof arguments);
        if (got >= 0 || (errno != ENOSYS && errno != EPERM))
            return decoded(bytes, got);
        byFolder.store(false, std::memory_order_relaxed);
    }
    return read(path, false);
}

bool writeCodes(const QString &path, std::optional<quint32> type, std::optional<quint32> creator)
{
    const QByteArray name = PathCodec::encode(path);
    unsigned char bytes[infoSize] = {};
    getxattr(name.constData(), attribute, bytes, sizeof bytes);
    if (type)
        qToBigEndian(*type, bytes);
    if (creator)
        qToBigEndian(*creator, bytes + 4);
    return setxattr(name.constData(), attribute, bytes, sizeof bytes, 0) == 0;
}

} // namespace FinderInfo
