#include "FileMoves.h"
#include "PathCodec.h"

#include <QDir>
#include <QFile>
#include "TemporaryFolder.h"
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

QByteArray bytes(const QString &path)
{
    return PathCodec::encode(path);
}

struct stat statusOf(const QString &path)
{
    struct stat info = {};
    lstat(bytes(path).constData(), &info);
    return info;
}

void setTimes(const QString &path, time_t seconds)
{
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    utimensat(AT_FDCWD, bytes(path).constData(), times, AT_SYMLINK_NOFOLLOW);
}

// Two folders on different file systems: the temporary folder and shared
// memory. Skips where they are the same.
class AcrossFileSystems : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(here.isValid());
        if (!there.isValid() || statusOf(here.path()).st_dev == statusOf(there.path()).st_dev)
            GTEST_SKIP() << "no second file system at /dev/shm";
    }
    TemporaryFolder here;
    TemporaryFolder there{QStringLiteral("/dev/shm/nomen-moves-XXXXXX")};
};

// A folder with a file that has its own permissions, time and extended
// attribute, and a link.
void makeAlbum(const QString &album)
{
    ASSERT_TRUE(QDir().mkpath(album));
    QFile photo(album + "/one.jpg");
    ASSERT_TRUE(photo.open(QIODevice::WriteOnly));
    photo.write("pixels");
    photo.close();
    ASSERT_EQ(chmod(bytes(album + "/one.jpg").constData(), 0640), 0);
    ASSERT_EQ(setxattr(bytes(album + "/one.jpg").constData(), "user.comment", "kept", 4, 0), 0);
    ASSERT_EQ(symlink("one.jpg", bytes(album + "/link").constData()), 0);
    setTimes(album + "/one.jpg", 981158400);
    setTimes(album + "/link", 981158401);
    ASSERT_EQ(chmod(bytes(album).constData(), 0750), 0);
    setTimes(album, 981158402);
}

void expectAlbum(const QString &album)
{
    QFile copy(album + "/one.jpg");
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), "pixels");
    EXPECT_EQ(statusOf(album + "/one.jpg").st_mode & 07777, 0640u);
    EXPECT_EQ(statusOf(album + "/one.jpg").st_mtime, 981158400);
    char value[16] = {};
    EXPECT_EQ(getxattr(bytes(album + "/one.jpg").constData(), "user.comment", value, sizeof value), 4);
    EXPECT_STREQ(value, "kept");
    char target[16] = {};
    EXPECT_EQ(readlink(bytes(album + "/link").constData(), target, sizeof target), 7);
    EXPECT_STREQ(target, "one.jpg");
    EXPECT_EQ(statusOf(album + "/link").st_mtime, 981158401);
    EXPECT_EQ(statusOf(album).st_mode & 07777, 0750u);
    EXPECT_EQ(statusOf(album).st_mtime, 981158402);
}

TEST_F(AcrossFileSystems, TheCopyKeepsContentsPermissionsTimesAttributesAndLinks)
{
    const QString album = here.filePath("Album");
    makeAlbum(album);
    const QString moved = there.filePath("Album");
    const FileMoves::Result result = FileMoves::move(album, moved);
    EXPECT_EQ(result.error, 0) << result.detail.toStdString();
    EXPECT_FALSE(QFileInfo::exists(album)) << "the original goes once the copy is whole";
    expectAlbum(moved);

    // Copies, on one file system and across, keep the same and leave the original.
    for (const QString &copy : {there.filePath("Same"), here.filePath("Back")}) {
        EXPECT_EQ(FileMoves::copy(bytes(moved), bytes(copy)).error, 0);
        expectAlbum(copy);
        expectAlbum(moved);
    }
    EXPECT_EQ(FileMoves::copy(bytes(moved), bytes(here.filePath("Back"))).error, EEXIST) << "never over an item";
}

// A copy that meets an item it cannot copy stops, and what it made goes.
TEST(Copies, AFailedCopyLeavesNothingBehind)
{
    TemporaryFolder folder;
    const QString source = folder.filePath("source");
    makeAlbum(source);
    ASSERT_EQ(mkfifo(bytes(source + "/z-pipe").constData(), 0600), 0);
    setTimes(source, 981158402);
    const FileMoves::Result result = FileMoves::copy(bytes(source), bytes(folder.filePath("copy")));
    EXPECT_EQ(result.error, ENOTSUP);
    EXPECT_TRUE(result.detail.contains("z-pipe")) << result.detail.toStdString();
    EXPECT_FALSE(QFileInfo::exists(folder.filePath("copy")));
    expectAlbum(source);
}

TEST_F(AcrossFileSystems, NothingIsReplacedAndAGivenUpCopyGoesAgain)
{
    QFile(here.filePath("a")).open(QIODevice::WriteOnly);
    QFile taken(there.filePath("taken"));
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly));
    taken.write("theirs");
    taken.close();
    EXPECT_EQ(FileMoves::move(here.filePath("a"), there.filePath("taken")).error, EEXIST);
    EXPECT_TRUE(QFileInfo::exists(here.filePath("a")));
    // The copy is whole, but whoever records it says no: the copy goes and
    // the original stays.
    FileMoves::Options refuse;
    refuse.copied = [](const QByteArray &) { return ENOSPC; };
    const FileMoves::Result refused = FileMoves::move(here.filePath("a"), there.filePath("b"), refuse);
    EXPECT_EQ(refused.error, ENOSPC);
    EXPECT_FALSE(QFileInfo::exists(there.filePath("b")));
    EXPECT_TRUE(QFileInfo::exists(here.filePath("a")));
    QFile check(there.filePath("taken"));
    ASSERT_TRUE(check.open(QIODevice::ReadOnly));
    EXPECT_EQ(check.readAll(), "theirs");
}

// An immutable original cannot be removed, even by root.
TEST_F(AcrossFileSystems, AnOriginalThatCannotBeRemovedIsReportedWithBothCopies)
{
    const QString locked = here.filePath("locked");
    QFile(locked).open(QIODevice::WriteOnly);
    const int descriptor = open(bytes(locked).constData(), O_RDONLY);
    int flags = 0;
    ioctl(descriptor, FS_IOC_GETFLAGS, &flags);
    flags |= FS_IMMUTABLE_FL;
    const bool immutable = ioctl(descriptor, FS_IOC_SETFLAGS, &flags) == 0;
    if (!immutable) {
        close(descriptor);
        GTEST_SKIP() << "cannot make a file immutable here";
    }
    const FileMoves::Result result = FileMoves::move(locked, there.filePath("locked"));
    flags &= ~FS_IMMUTABLE_FL;
    ioctl(descriptor, FS_IOC_SETFLAGS, &flags);
    close(descriptor);
    EXPECT_TRUE(result.originalKept);
    EXPECT_EQ(result.error, EPERM);
    EXPECT_TRUE(result.detail.contains(locked) && result.detail.contains(there.filePath("locked"))
                && result.detail.contains("both copies are there"))
        << result.detail.toStdString();
    EXPECT_TRUE(QFileInfo::exists(locked));
    EXPECT_TRUE(QFileInfo::exists(there.filePath("locked")));
}

} // namespace
