#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <optional>
#include <sys/types.h>

// What the file system records about one item, read in one call.
struct ItemStatus {
    mode_t mode = 0;
    uid_t owner = 0;
    gid_t group = 0;
    quint64 size = 0;
    quint64 inode = 0;
    quint64 device = 0;
    quint32 links = 0;
    QDateTime modified;
    std::optional<QDateTime> created; // only where the file system keeps a birth time
    std::optional<bool> immutable;    // where the file system reports its flags
    std::optional<bool> appendOnly;

    bool isDirectory() const;
    bool isSymbolicLink() const;
};

namespace FileStatus {

std::optional<ItemStatus> of(const QString &path, bool followLinks);
// The names in a folder in the order the file system gives them, "." and
// ".." left out, each decoded losslessly; nullopt when it cannot be read.
std::optional<QStringList> entryNames(const QString &folder);
QString ownerName(uid_t uid);
QString groupName(gid_t gid);
// The flags chattr sets: immutable and append-only.
struct Flags {
    bool immutable = false;
    bool appendOnly = false;
};
std::optional<Flags> flags(const QString &path);

} // namespace FileStatus

// Classic codes and Finder flags, kept in the 32-byte Finder information of
// the extended attribute "user.com.apple.FinderInfo", big-endian as it was.
namespace FinderInfo {

struct Info {
    quint32 type = 0;
    quint32 creator = 0;
    quint16 flags = 0;
};
constexpr quint16 InvisibleFlag = 0x4000;

std::optional<Info> read(const QString &path, bool followLinks = true);
std::optional<Info> read(const QByteArray &path, bool followLinks);
// The item `name` in the open folder `folder` (or `name` itself with
// AT_FDCWD), its link not followed; `path` is its whole path, for kernels
// that cannot read it by its folder.
std::optional<Info> readAt(int folder, const char *name, const QByteArray &path);
bool writeCodes(const QString &path, std::optional<quint32> type, std::optional<quint32> creator);

} // namespace FinderInfo
