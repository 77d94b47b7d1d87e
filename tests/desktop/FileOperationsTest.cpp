#include "Descriptor.h"
#include "MiscMethods.h"
#include "FileBytes.h"
#include "PathCodec.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include "TemporaryFolder.h"
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace {

using M = MiscMethods;

QByteArray bytes(const QString &path)
{
    return PathCodec::encode(path);
}

void write(const QString &path, const QByteArray &contents)
{
    const int fd = open(bytes(path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ASSERT_GE(fd, 0) << path.toStdString();
    ASSERT_EQ(::write(fd, contents.constData(), size_t(contents.size())), contents.size());
    close(fd);
}

QByteArray contentsOf(const QString &path)
{
    return FileBytes::read(path).bytes.value_or("(missing)");
}

bool exists(const QString &path)
{
    struct stat info;
    return lstat(bytes(path).constData(), &info) == 0;
}

class FileOperations : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        for (const char *name : {"a", "b", "c"})
            ASSERT_TRUE(QDir(folder.path()).mkdir(QString::fromLatin1(name)));
        write(path("a/x.txt"), "x");
    }
    QString path(const QString &relative) const { return folder.filePath(relative); }
    // The folder's entries, hidden ones too, so nothing left behind escapes.
    QStringList entries(const QString &relative) const
    {
        return QDir(path(relative)).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    TemporaryFolder folder;
};

// A move keeps the item's name; a copy may give it a new one. The
// destination is the full new path when it ends with the item's name, as
// plain text.
TEST_F(FileOperations, AMoveKeepsTheNameWhileACopyMayTakeANewOne)
{
    EXPECT_TRUE(M::moveItem(path("a/x.txt"), path("b"), false));
    EXPECT_TRUE(M::moveItem(path("b/x.txt"), path("a/"), false));
    EXPECT_TRUE(M::moveItem(path("a/x.txt"), path("b/x.txt"), false));
    EXPECT_EQ(entries("b"), QStringList{"x.txt"});

    EXPECT_TRUE(M::copyItem(path("b/x.txt"), path("c/y.txt"), false));
    EXPECT_EQ(contentsOf(path("c/y.txt")), "x");
    EXPECT_FALSE(M::moveItem(path("b/x.txt"), path("c/z.txt"), false)) << "a move into a folder c/z.txt, missing";
    ASSERT_TRUE(QDir(path("c")).mkdir("z.txt"));
    EXPECT_TRUE(M::moveItem(path("b/x.txt"), path("c/z.txt"), false));
    EXPECT_EQ(entries("c/z.txt"), QStringList{"x.txt"});
    EXPECT_TRUE(M::moveItem(path("c/z.txt/x.txt"), path("b/box.txt"), false)) << "box.txt ends with x.txt";
    EXPECT_EQ(entries("b"), QStringList{"box.txt"});
    EXPECT_FALSE(M::moveItem(path("b/missing.txt"), path("c"), false));

    // Names in bytes that are not UTF-8 arrive as they were.
    const QString odd = PathCodec::decode(bytes(path("a")) + "/caf\xe9.txt");
    write(odd, "odd");
    EXPECT_TRUE(M::copyItem(odd, path("c/"), false));
    EXPECT_TRUE(M::moveItem(odd, path("b"), false));
    EXPECT_EQ(contentsOf(PathCodec::decode(bytes(path("b")) + "/caf\xe9.txt")), "odd");
    EXPECT_EQ(contentsOf(PathCodec::decode(bytes(path("c")) + "/caf\xe9.txt")), "odd");
    EXPECT_FALSE(exists(odd));
}

// Replacing removes the old item only once the new one stands in its
// place; nothing else is lost, whatever the kinds and however they nest.
TEST_F(FileOperations, ReplacingLosesOnlyTheReplacedItem)
{
    write(path("b/x.txt"), "old");
    EXPECT_FALSE(M::moveItem(path("a/x.txt"), path("b"), false));
    EXPECT_EQ(contentsOf(path("b/x.txt")), "old");
    EXPECT_TRUE(M::copyItem(path("a/x.txt"), path("b/x.txt"), true));
    EXPECT_EQ(contentsOf(path("b/x.txt")), "x");
    EXPECT_TRUE(exists(path("a/x.txt"))) << "a copy leaves its source";

    // A file over a folder full of things, and a folder over a file.
    ASSERT_TRUE(QDir(path("c")).mkpath("x.txt/deep"));
    write(path("c/x.txt/deep/f"), "f");
    EXPECT_TRUE(M::moveItem(path("a/x.txt"), path("c"), true));
    EXPECT_EQ(contentsOf(path("c/x.txt")), "x");
    EXPECT_FALSE(M::moveItem(path("c"), path("b/x.txt"), true)) << "a move keeps the name: into b/x.txt, a file";
    EXPECT_TRUE(M::copyItem(path("c"), path("b/x.txt"), true));
    EXPECT_EQ(contentsOf(path("b/x.txt/x.txt")), "x");

    // An item onto itself is refused rather than removed.
    EXPECT_FALSE(M::moveItem(path("c/x.txt"), path("c/x.txt"), true));
    EXPECT_FALSE(M::copyItem(path("c/x.txt"), path("c/x.txt"), true));
    EXPECT_EQ(contentsOf(path("c/x.txt")), "x");

    // The folder that holds the source is never replaced: it would go with
    // everything in it.
    ASSERT_TRUE(QDir(path("photos")).mkpath("."));
    for (const char *name : {"p1.jpg", "p2.jpg", "p3.jpg"})
        write(path("photos/") + name, name);
    EXPECT_FALSE(M::copyItem(path("photos/p1.jpg"), path("photos"), true));
    EXPECT_FALSE(M::moveItem(path("photos/p1.jpg"), path("photos"), true));
    ASSERT_TRUE(QDir(path("projects/s")).mkpath("deep"));
    write(path("projects/s/deep/plan.txt"), "plan");
    write(path("projects/other.txt"), "other");
    EXPECT_FALSE(M::moveItem(path("projects/s"), path("projects"), true)) << "\"projects\" ends with the name \"s\"";
    EXPECT_FALSE(M::copyItem(path("projects/s/deep"), path("projects/s/../s/"), true));
    EXPECT_EQ(entries("photos"), (QStringList{"p1.jpg", "p2.jpg", "p3.jpg"}));
    EXPECT_EQ(entries("projects"), (QStringList{"other.txt", "s"}));
    EXPECT_EQ(contentsOf(path("projects/s/deep/plan.txt")), "plan");

    // A folder is never copied into itself.
    EXPECT_FALSE(M::copyItem(path("b"), path("b/x.txt/b"), false));
    for (const char *name : {"a", "b", "c", "b/x.txt"})
        for (const QString &entry : entries(QString::fromLatin1(name)))
            EXPECT_FALSE(entry.startsWith(".nomen")) << "left behind: " << entry.toStdString();
}

// Across file systems the new item is copied in whole beside the old one
// before anything is replaced, and the original goes last.
TEST_F(FileOperations, ReplacingAcrossFileSystemsLosesOnlyTheReplacedItem)
{
    TemporaryFolder there(QStringLiteral("/dev/shm/nomen-operations-XXXXXX"));
    struct stat here, away;
    if (!there.isValid() || stat(bytes(there.path()).constData(), &away) != 0
        || stat(bytes(folder.path()).constData(), &here) != 0 || here.st_dev == away.st_dev)
        GTEST_SKIP() << "no second file system at /dev/shm";
    write(there.filePath("x.txt"), "old");
    ASSERT_TRUE(QDir(path("a")).mkpath("album/inner"));
    write(path("a/album/inner/photo.jpg"), "pixels");
    ASSERT_TRUE(QDir(there.path()).mkpath("album/stale"));

    EXPECT_TRUE(M::moveItem(path("a/x.txt"), there.path(), true));
    EXPECT_EQ(contentsOf(there.filePath("x.txt")), "x");
    EXPECT_TRUE(M::copyItem(path("a/album"), there.filePath("album"), true));
    EXPECT_EQ(contentsOf(there.filePath("album/inner/photo.jpg")), "pixels");
    EXPECT_FALSE(exists(there.filePath("album/stale")));
    EXPECT_EQ(entries("a"), QStringList{"album"}) << "the copy's source stays, the moved file went";
    EXPECT_EQ(QDir(there.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              (QStringList{"album", "x.txt"}));
}

// A download moved or copied to a file system that holds no extended
// attributes (as FAT holds none) arrives without them, as cp -a does it,
// and the log names what stayed behind.
TEST_F(FileOperations, WhatADestinationCannotHoldStaysBehindAndIsLogged)
{
    TemporaryFolder stick;
    if (geteuid() != 0 || mount("ramfs", bytes(stick.path()).constData(), "ramfs", 0, nullptr) != 0)
        GTEST_SKIP() << "a file system without extended attributes is mounted only by root";
    const std::unique_ptr<TemporaryFolder, void (*)(TemporaryFolder *)> unmount(&stick, [](TemporaryFolder *mounted) {
        umount2(bytes(mounted->path()).constData(), MNT_DETACH);
    });
    ASSERT_TRUE(QDir(path("a")).mkpath("album"));
    for (const char *name : {"a/download.pdf", "a/album/photo.jpg"}) {
        write(path(QString::fromLatin1(name)), name);
        ASSERT_EQ(setxattr(bytes(path(QString::fromLatin1(name))).constData(), "user.xdg.origin.url", "https://e.org/", 14, 0), 0);
    }
    const QString log = folder.filePath(QStringLiteral("log.txt"));
    const int savedError = dup(STDERR_FILENO);
    const int logged = open(bytes(log).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(logged, STDERR_FILENO);
    close(logged);
    const bool moved = M::moveItem(path("a/download.pdf"), stick.path(), false);
    const bool copied = M::copyItem(path("a/album"), stick.path() + u'/', false);
    fflush(stderr);
    dup2(savedError, STDERR_FILENO);
    close(savedError);

    EXPECT_TRUE(moved);
    EXPECT_TRUE(copied);
    EXPECT_EQ(contentsOf(stick.filePath("download.pdf")), "a/download.pdf");
    EXPECT_EQ(contentsOf(stick.filePath("album/photo.jpg")), "a/album/photo.jpg");
    EXPECT_FALSE(exists(path("a/download.pdf")));
    const QString written = QString::fromUtf8(contentsOf(log));
    EXPECT_TRUE(written.contains(path("a/download.pdf") + QStringLiteral("\" went without the extended attributes its new file "
                                                                           "system cannot hold: user.xdg.origin.url")))
        << written.toStdString();
    EXPECT_TRUE(written.contains(path("a/album/photo.jpg"))) << written.toStdString();
}

// The root, the home folder and what holds it are never removed or
// replaced, however the path reaches them. The home folder here is a
// stand-in, so a fault cannot cost the real one.
TEST_F(FileOperations, DeletesRefuseTheHomeFolderAndWhatHoldsIt)
{
    const QByteArray savedHome = qgetenv("HOME");
    const QString home = path("home/me");
    ASSERT_TRUE(QDir().mkpath(home));
    write(home + "/keep.txt", "mine");
    qputenv("HOME", bytes(home));
    ASSERT_EQ(symlink(bytes(home).constData(), bytes(path("b/link")).constData()), 0);

    for (const QString &dangerous : {QString(), home, home + "/", path("home"), path("home/me/../../home/me/."),
                                     path("b/../home"), folder.path()})
        EXPECT_FALSE(M::deleteItem(dangerous)) << dangerous.toStdString();
    EXPECT_FALSE(M::copyItem(path("a/x.txt"), home, true)) << "replacing the home folder";
    EXPECT_TRUE(M::deleteItem(path("b/link/"))) << "a link goes, not the folder it names";
    EXPECT_FALSE(exists(path("b/link")));
    EXPECT_TRUE(M::deleteItem(path("a")));
    EXPECT_FALSE(exists(path("a")));
    qputenv("HOME", savedHome);
    EXPECT_EQ(contentsOf(home + "/keep.txt"), "mine");
}

// Writes replace the file in one step, keep its permissions and the link
// that names it, and appends keep the earlier bytes whatever they are.
TEST_F(FileOperations, WritesAreWholeAndAppendsKeepEveryEarlierByte)
{
    const QString notes = path("b/notes.txt");
    write(notes, "\xff\xfe old\n");
    ASSERT_EQ(chmod(bytes(notes).constData(), 0640), 0);
    ASSERT_EQ(symlink("notes.txt", bytes(path("b/shortcut")).constData()), 0);

    EXPECT_TRUE(M::writeToFile(path("b/shortcut"), QStringLiteral("neu \u00fc\n"), true, "ttxt", " ", false));
    EXPECT_EQ(contentsOf(notes), QByteArray("\xff\xfe old\nneu \xc3\xbc\n"));
    struct stat info;
    ASSERT_EQ(lstat(bytes(notes).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    ASSERT_EQ(lstat(bytes(path("b/shortcut")).constData(), &info), 0);
    EXPECT_TRUE(S_ISLNK(info.st_mode));
    EXPECT_EQ(M::returnCreatorCode(notes), QStringLiteral("ttxt"));
    EXPECT_EQ(M::returnFileType(notes), QString()) << "a blank type is not set";

    EXPECT_TRUE(M::writeToFile(notes, QStringLiteral("new"), false, QString(), QString(), true));
    EXPECT_EQ(contentsOf(notes), "new");
    EXPECT_TRUE(M::writeToFile(path("c/fresh.txt"), QStringLiteral("fresh"), true, QString(), QString(), false));
    EXPECT_EQ(contentsOf(path("c/fresh.txt")), "fresh");

    EXPECT_FALSE(M::writeToFile(path("a/x.txt/inside"), QStringLiteral("no"), false, QString(), QString(), false));
    EXPECT_FALSE(M::writeToFile(path("b"), QStringLiteral("no"), false, QString(), QString(), false)) << "a folder";
    EXPECT_EQ(entries("b"), (QStringList{"notes.txt", "shortcut"})) << "no temporary file is left";
}

// What is written goes into the file itself wherever it must stay what it
// is: an append keeps every attribute (the creator code just set among
// them), a file with two names shows the text under both, a pipe gets it
// when someone reads it; a plain file replaced in one step keeps them too.
TEST_F(FileOperations, WritesKeepTheFilesAttributesLinksAndKind)
{
    const QString notes = path("b/notes.txt");
    write(notes, "one\n");
    ASSERT_EQ(setxattr(bytes(notes).constData(), "user.xdg.origin.url", "https://example.org/n", 21, 0), 0);
    EXPECT_TRUE(M::writeToFile(notes, QStringLiteral("two\n"), true, "ttxt", "TEXT", false));
    EXPECT_TRUE(M::writeToFile(notes, QStringLiteral("three\n"), true, QString(), QString(), false));
    EXPECT_EQ(contentsOf(notes), "one\ntwo\nthree\n");
    EXPECT_EQ(M::returnCreatorCode(notes), QStringLiteral("ttxt")) << "an append keeps the code it was given";
    char url[64] = {};
    EXPECT_EQ(getxattr(bytes(notes).constData(), "user.xdg.origin.url", url, sizeof url), 21);

    EXPECT_TRUE(M::writeToFile(notes, QStringLiteral("replaced"), false, QString(), QString(), false));
    EXPECT_EQ(contentsOf(notes), "replaced");
    EXPECT_EQ(getxattr(bytes(notes).constData(), "user.xdg.origin.url", url, sizeof url), 21) << "a replaced file keeps them";
    EXPECT_EQ(M::returnFileType(notes), QStringLiteral("TEXT"));

    ASSERT_EQ(link(bytes(notes).constData(), bytes(path("b/other name")).constData()), 0);
    EXPECT_TRUE(M::writeToFile(notes, QStringLiteral("both"), false, QString(), QString(), false));
    EXPECT_TRUE(M::writeToFile(notes, QStringLiteral(" names"), true, QString(), QString(), false));
    EXPECT_EQ(contentsOf(path("b/other name")), "both names");

    const QString pipe = path("b/pipe");
    ASSERT_EQ(mkfifo(bytes(pipe).constData(), 0600), 0);
    EXPECT_FALSE(M::writeToFile(pipe, QStringLiteral("nobody reads"), false, QString(), QString(), false));
    QByteArray heard;
    std::thread reader([&] { heard = contentsOf(pipe); });
    bool written = false;
    for (int attempt = 0; attempt < 200 && !written; ++attempt) {
        written = M::writeToFile(pipe, QStringLiteral("heard"), true, QString(), QString(), false);
        if (!written)
            usleep(5000); // until the reader has the pipe open
    }
    reader.join();
    EXPECT_TRUE(written);
    EXPECT_EQ(heard, "heard");
    struct stat info;
    ASSERT_EQ(lstat(bytes(pipe).constData(), &info), 0);
    EXPECT_TRUE(S_ISFIFO(info.st_mode)) << "still a pipe";
}

TEST_F(FileOperations, FolderChainsAndFreeNames)
{
    EXPECT_TRUE(M::makeTargetFolder(path("c/d/e/")).canConvert<Descriptor>());
    EXPECT_TRUE(QFileInfo(path("c/d/e")).isDir());
    EXPECT_EQ(M::makeTargetFolder(path("m1/m2/") + QString(300, u'n') + "/m3"), QVariant(false)) << "a name too long";
    EXPECT_TRUE(QFileInfo(path("m1/m2")).isDir()) << "what was made stays";

    write(path("b/report.txt"), "");
    EXPECT_EQ(M::returnUniquePath(path("b/report.txt")), path("b/report 1.txt"));
    write(path("b/report 1.txt"), "");
    EXPECT_EQ(M::returnUniquePath(path("b/report.txt")), path("b/report 2.txt"));
    for (const char *name : {"README", ".bashrc", "a.tar.gz", "dots."})
        write(path("b/") + QString::fromLatin1(name), "");
    EXPECT_EQ(M::returnUniquePath(path("b/README")), path("b/README 1"));
    EXPECT_EQ(M::returnUniquePath(path("b/.bashrc")), path("b/.bashrc 1"));
    EXPECT_EQ(M::returnUniquePath(path("b/a.tar.gz")), path("b/a.tar 1.gz"));
    EXPECT_EQ(M::returnUniquePath(path("b/dots.")), path("b/dots. 1"));
    EXPECT_EQ(M::returnUniquePath(path("c/")), path("c 1"));
    EXPECT_EQ(M::returnUniquePath(path("b/free.txt")), path("b/free.txt"));
}

// Applications are desktop entries found by their identifier.
TEST(Applications, AreFoundByTheirDesktopEntry)
{
    TemporaryFolder data;
    ASSERT_TRUE(QDir(data.path()).mkpath("applications"));
    write(data.filePath("applications/org.example.Shell.desktop"),
          "[Desktop Entry]\nType=Application\nName=Shell\nExec=sh -c true %F\n");
    write(data.filePath("applications/org.example.Gone.desktop"),
          "[Desktop Entry]\nType=Application\nName=Gone\nExec=no-such-program-here\n");
    // Our folder first; the system's stay, as other tests read the MIME
    // database from them.
    const QByteArray savedHome = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", bytes(data.path()));
    const QString shell = QStandardPaths::findExecutable("sh");
    EXPECT_EQ(M::returnAppPathFromBundleID("org.example.Shell"), shell);
    EXPECT_EQ(M::returnAppPathFromBundleID("org.example.Shell.desktop"), shell);
    EXPECT_EQ(M::returnAppPathFromBundleID("org.example.Gone"), QString());
    EXPECT_EQ(M::returnAppPathFromBundleID("org.example.Missing"), QString());
    EXPECT_EQ(M::returnAppPath("ttxt"), QString()) << "Linux keeps no creator codes";
    if (savedHome.isNull())
        qunsetenv("XDG_DATA_HOME");
    else
        qputenv("XDG_DATA_HOME", savedHome);
}

} // namespace
