#pragma once

#include <QByteArray>
#include <QHashFunctions>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <sys/sysmacros.h>

// Which item a name leads to: its device and inode, and its birth time where
// the file system keeps one. A rename keeps all three, so they tell whether
// the file under a name is still the one a batch moved; the birth time tells
// a new file apart from a deleted one whose inode number it was given.
struct FileIdentity {
    quint64 device = 0;
    quint64 inode = 0;
    qint64 born = 0; // nanoseconds since 1970; 0 where unknown

    // The same inode: hard links share it.
    bool operator==(const FileIdentity &other) const { return device == other.device && inode == other.inode; }
    bool isSameFile(const FileIdentity &other) const
    {
        return *this == other && (born == 0 || other.born == 0 || born == other.born);
    }

    // From what statx read (with STATX_INO, and STATX_BTIME if it is wanted).
    static FileIdentity of(const struct statx &info)
    {
        FileIdentity identity{makedev(info.stx_dev_major, info.stx_dev_minor), info.stx_ino, 0};
        if (info.stx_mask & STATX_BTIME)
            identity.born = qint64(info.stx_btime.tv_sec) * 1000000000 + info.stx_btime.tv_nsec;
        return identity;
    }

    // The item itself, not what a symbolic link points to; nullopt when
    // nothing is there.
    static std::optional<FileIdentity> at(const QByteArray &path) { return read(AT_FDCWD, path.constData(), AT_SYMLINK_NOFOLLOW); }
    // The item open at `descriptor`; nullopt when it cannot be read.
    static std::optional<FileIdentity> ofOpen(int descriptor) { return read(descriptor, "", AT_EMPTY_PATH); }

private:
    static std::optional<FileIdentity> read(int at, const char *path, int flags)
    {
        struct statx info;
        if (statx(at, path, flags, STATX_INO | STATX_BTIME, &info) != 0)
            return std::nullopt;
        return of(info);
    }
};

inline size_t qHash(const FileIdentity &identity, size_t seed = 0)
{
    return qHashMulti(seed, identity.device, identity.inode);
}
