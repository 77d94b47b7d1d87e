#include "MiscMethods.h"
#include "PathCodec.h"
#include "PathConversion.h"
#include "TestPrinting.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include "TemporaryFolder.h"
#include <gtest/gtest.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using M = MiscMethods;

namespace {

class FileItems : public testing::Test {
protected:
    void SetUp() override
    {
        PathConversion::setRootVolumeName(QStringLiteral("Disk"));
        ASSERT_TRUE(dir.isValid());
    }
    void TearDown() override { PathConversion::setRootVolumeName(QString()); }

    QString make(const QString &relative, const QByteArray &contents = "x")
    {
        const QString path = dir.filePath(relative);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        return path;
    }
    QString makeFolder(const QString &relative)
    {
        const QString path = dir.filePath(relative);
        QDir().mkpath(path);
        return path;
    }
    bool xattrsWork()
    {
        const QString probe = make(QStringLiteral(".probe"));
        return setxattr(QFile::encodeName(probe).constData(), "user.nomen.probe", "1", 1, 0) == 0;
    }
    static QString hfs(const QString &path) { return PathConversion::pathHFS(path); }

    TemporaryFolder dir;
};

TEST_F(FileItems, BothPathFormsGiveTheSameAnswers)
{
    const QString file = make(QStringLiteral("Photos.old/beach.jpg"));
    const QString folder = dir.filePath(QStringLiteral("Photos.old"));
    for (const QString &path : {file, hfs(file)}) {
        EXPECT_TRUE(M::itemExists(path));
        EXPECT_EQ(M::returnItemName(path), QStringLiteral("beach.jpg"));
        EXPECT_EQ(M::returnItemExtension(path), QStringLiteral("jpg"));
        EXPECT_FALSE(M::returnItemIsFolder(path));
        EXPECT_EQ(M::returnItemUTI(path), QVariant(QStringLiteral("image/jpeg")));
        EXPECT_TRUE(M::returnItemIsImage(path));
        EXPECT_TRUE(M::returnItemIsWritable(path));
        struct stat info {};
        ASSERT_EQ(stat(QFile::encodeName(file).constData(), &info), 0);
        EXPECT_EQ(M::returnItemPermissions(path), QVariant(int(info.st_mode & 07777)));
    }
    for (const QString &path : {folder, hfs(folder)}) {
        EXPECT_TRUE(M::returnItemIsFolder(path));
        EXPECT_EQ(M::returnItemExtension(path), QString("")) << "a folder has no extension";
    }
    EXPECT_EQ(M::returnItemContainer(file), dir.filePath(QStringLiteral("Photos.old/")));
    EXPECT_EQ(M::returnItemContainer(hfs(file)), hfs(dir.filePath(QStringLiteral("Photos.old/"))));
    EXPECT_TRUE(M::returnItemContainer(hfs(file)).endsWith(u':'));
}

TEST_F(FileItems, MissingItemsAnswerTheirFixedValues)
{
    const QString missing = dir.filePath(QStringLiteral("nothing.txt"));
    EXPECT_FALSE(M::itemExists(missing));
    EXPECT_EQ(M::returnCreationDate(missing), QVariant(false));
    EXPECT_EQ(M::returnModificationDate(missing), QVariant(false));
    EXPECT_EQ(M::returnCreationAndModificationDate(missing),
              QVariantMap({{"creation_date", false}, {"modification_date", false}}));
    EXPECT_EQ(M::returnCreatorCode(missing), QString(""));
    EXPECT_EQ(M::returnFileType(missing), QString(""));
    EXPECT_EQ(M::returnItemInfo(missing), std::nullopt);
    EXPECT_FALSE(M::returnItemUTI(missing).isValid());
    EXPECT_EQ(M::returnItemOwner(missing), QString(""));
    EXPECT_EQ(M::returnItemPermissions(missing), QVariant(QString("")));
    EXPECT_EQ(M::returnItemDisplayedName(missing), QString(""));
    EXPECT_EQ(M::returnItemName(missing), QStringLiteral("nothing.txt")) << "no existence check";
    EXPECT_EQ(M::returnFolderContents(missing), std::nullopt);
    EXPECT_FALSE(M::returnItemIsImage(missing));
    EXPECT_FALSE(M::setItemOwner(missing, QStringLiteral("root")));
    EXPECT_FALSE(M::setItemPermissions(missing, 420));
    const QVariantMap tree = M::returnCompleteFolderContents(missing, true);
    EXPECT_EQ(tree.value("_contents").toList().size(), 0);
    EXPECT_EQ(tree.value("_subfolders").toList().size(), 0);
}

TEST_F(FileItems, DatesFromTheFileSystem)
{
    const QString file = make(QStringLiteral("dated.txt"));
    EXPECT_TRUE(M::setModificationDate(file, QStringLiteral("2005-03-14 09:05:00 +0100")));
    EXPECT_EQ(M::returnModificationDate(file).toDateTime(),
              QDateTime(QDate(2005, 3, 14), QTime(8, 5, 0), Qt::UTC));
    EXPECT_FALSE(M::setModificationDate(file, QStringLiteral("14/03/2005"))) << "not the date-string form";
    // No settable birth time on Linux: both setters that need one say NO
    // and change nothing.
    EXPECT_FALSE(M::setCreationDate(file, QStringLiteral("2001-01-01 00:00:00 +0000")));
    EXPECT_FALSE(M::setCreationAndModificationDate(file, QStringLiteral("2001-01-01 00:00:00 +0000")));
    EXPECT_FALSE(M::randomizeDate(file));
    EXPECT_EQ(M::returnModificationDate(file).toDateTime().date(), QDate(2005, 3, 14));
    const QVariant created = M::returnCreationDate(file);
    if (created.typeId() == QMetaType::QDateTime)
        EXPECT_LE(std::abs(created.toDateTime().secsTo(QDateTime::currentDateTime())), 60);
    else
        EXPECT_EQ(created, QVariant(false)) << "a file system without birth times";
}

TEST(RandomDates, StayWithinTheirRanges)
{
    const QRegularExpression form(QStringLiteral("^(\\d{4})-(\\d\\d)-(\\d\\d) (\\d\\d):(\\d\\d):(\\d\\d) \\+0600$"));
    for (int i = 0; i < 2000; ++i) {
        const auto m = form.match(M::randomDateString());
        ASSERT_TRUE(m.hasMatch());
        EXPECT_TRUE(m.captured(1).toInt() >= 2002 && m.captured(1).toInt() <= 2006);
        EXPECT_TRUE(m.captured(2).toInt() >= 1 && m.captured(2).toInt() <= 12);
        EXPECT_TRUE(m.captured(3).toInt() >= 1 && m.captured(3).toInt() <= 28);
        EXPECT_TRUE(m.captured(4).toInt() >= 1 && m.captured(5).toInt() >= 1 && m.captured(6).toInt() >= 1);
        ASSERT_TRUE(M::dateFromString(m.captured(0)).has_value());
    }
}

TEST_F(FileItems, CodesAreWrittenToAndReadFromTheFinderInformation)
{
    if (!xattrsWork())
        GTEST_SKIP() << "this file system keeps no user extended attributes";
    const QString file = make(QStringLiteral("notes"));
    EXPECT_EQ(M::returnCreatorCode(file), QString(""));
    EXPECT_EQ(M::returnFileType(file), QString(""));
    EXPECT_TRUE(M::setCreatorCode(file, QStringLiteral("ttxt")));
    EXPECT_TRUE(M::setFileType(hfs(file), QStringLiteral("TEXT")));
    EXPECT_EQ(M::returnCreatorCode(file), QStringLiteral("ttxt"));
    EXPECT_EQ(M::returnFileType(file), QStringLiteral("TEXT"));
    unsigned char raw[32];
    ASSERT_EQ(getxattr(QFile::encodeName(file).constData(), "user.com.apple.FinderInfo", raw, 32), 32);
    EXPECT_EQ(QByteArray(reinterpret_cast<char *>(raw), 8), QByteArray("TEXTttxt")) << "big-endian, type first";
    const auto attributes = M::attributesOfItem(file);
    ASSERT_TRUE(attributes.has_value());
    EXPECT_EQ(attributes->value("NSFileHFSTypeCode").toUInt(), 0x54455854u);
    EXPECT_EQ(M::returnItemInfo(file)->value("LSItemFileType"), QVariant(QStringLiteral("TEXT")));
    EXPECT_FALSE(M::setCreatorCode(dir.filePath(QStringLiteral("missing")), QStringLiteral("ttxt")));
}

TEST_F(FileItems, VisibilityByEveryRule)
{
    const QString plain = make(QStringLiteral("plain.txt"));
    const QString dotted = make(QStringLiteral(".profile"));
    const QString listed = make(QStringLiteral("listed.txt"));
    make(QStringLiteral(".hidden"), "other\nlisted.txt\n");
    EXPECT_EQ(M::returnItemVisiblity(plain), QVariant(true));
    EXPECT_EQ(M::returnItemVisiblity(dotted), QVariant(false));
    EXPECT_FALSE(M::returnItemVisiblity(listed).isValid()) << "a hidden-list entry answers nil";
    EXPECT_EQ(M::returnItemVisiblity(hfs(plain)), QVariant(true));
    EXPECT_EQ(M::returnItemVisiblity(QString()), QVariant(false));
    EXPECT_EQ(M::returnItemVisiblity(QStringLiteral("/tmp")), QVariant(false));
    EXPECT_EQ(M::returnItemVisiblity(QStringLiteral("/etc")), QVariant(false));
    EXPECT_EQ(M::returnItemVisiblity(QStringLiteral("/tmp/x")), QVariant(true)) << "only the exact system paths";
    // The list is read again when it changes.
    make(QStringLiteral(".hidden"), "other\n");
    EXPECT_EQ(M::returnItemVisiblity(listed), QVariant(true));
    if (xattrsWork()) {
        unsigned char info[32] = {};
        info[8] = 0x40; // the invisible flag, 0x4000 big-endian
        ASSERT_EQ(setxattr(QFile::encodeName(plain).constData(), "user.com.apple.FinderInfo", info, 32, 0), 0);
        EXPECT_EQ(M::returnItemVisiblity(plain), QVariant(false));
        EXPECT_EQ(M::returnItemInfo(plain)->value("LSItemIsInvisible"), QVariant(true));
    }
}

TEST_F(FileItems, FolderTreesListInvisibleFoldersContentsAtTheirParent)
{
    make(QStringLiteral("a.txt"));
    make(QStringLiteral(".secret/inside.txt"));
    make(QStringLiteral(".secret/deeper/leaf.txt"));
    make(QStringLiteral("Sub/b.txt"));
    make(QStringLiteral("Sub/.dot"));
    makeFolder(QStringLiteral("Empty"));

    const QVariantMap visibleOnly = M::returnCompleteFolderContents(dir.path(), false);
    EXPECT_EQ(visibleOnly.value("_path").toString(), dir.path());
    EXPECT_EQ(visibleOnly.value("_contents").toStringList(),
              QStringList({".secret/deeper", ".secret/inside.txt", "Empty", "Sub", "a.txt"}));
    const QVariantList subfolders = visibleOnly.value("_subfolders").toList();
    ASSERT_EQ(subfolders.size(), 3);
    EXPECT_EQ(subfolders[0].toMap().value("_path").toString(), dir.filePath(QStringLiteral(".secret/deeper/")));
    EXPECT_EQ(subfolders[0].toMap().value("_contents").toStringList(), QStringList({"leaf.txt"}));
    EXPECT_EQ(subfolders[2].toMap().value("_contents").toStringList(), QStringList({"b.txt"}));

    const QVariantMap everything = M::returnCompleteFolderContents(hfs(dir.path()), true);
    EXPECT_EQ(everything.value("_contents").toStringList(), QStringList({".secret", "Empty", "Sub", "a.txt"}));
    EXPECT_EQ(everything.value("_subfolders").toList()[2].toMap().value("_contents").toStringList(),
              QStringList({".dot", "b.txt"}));
    EXPECT_EQ(M::returnFolderContents(dir.path()),
              QStringList({".secret", "Empty", "Sub", "a.txt"}));
}

TEST_F(FileItems, LinksAreFollowedExceptForTheFolderTest)
{
    const QString folder = makeFolder(QStringLiteral("real"));
    const QString link = dir.filePath(QStringLiteral("link"));
    ASSERT_EQ(symlink(QFile::encodeName(folder).constData(), QFile::encodeName(link).constData()), 0);
    EXPECT_TRUE(M::itemExists(link));
    EXPECT_FALSE(M::returnItemIsFolder(link)) << "a link to a folder is not a folder";
    EXPECT_EQ(M::attributesOfItem(link)->value("NSFileType"), QVariant(QStringLiteral("NSFileTypeSymbolicLink")));
    EXPECT_EQ(M::attributesOfItem(folder)->value("NSFileType"), QVariant(QStringLiteral("NSFileTypeDirectory")));
}

TEST_F(FileItems, RenamingInPlaceNeverReplaces)
{
    const QString file = make(QStringLiteral("old.txt"), "mine");
    make(QStringLiteral("taken.txt"), "theirs");
    EXPECT_FALSE(M::setItemName(file, QStringLiteral("taken.txt")));
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_TRUE(M::setItemName(hfs(file), QStringLiteral("new.txt")));
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("new.txt"))));
    EXPECT_FALSE(M::setItemName(dir.filePath(QStringLiteral("new.txt")), QStringLiteral("a/b")));
}

// A stand-in for pkexec on the PATH records what it was asked to run.
class AdministratorFallback : public FileItems {
protected:
    void SetUp() override
    {
        FileItems::SetUp();
        const QString bin = makeFolder(QStringLiteral("bin"));
        log = dir.filePath(QStringLiteral("pkexec.log"));
        QFile script(bin + QStringLiteral("/pkexec"));
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write(QStringLiteral("#!/bin/sh\necho \"$@\" >> '%1'\nexit ${PKEXEC_STATUS:-0}\n").arg(log).toUtf8());
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        savedPath = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(bin) + ":" + savedPath);
    }
    void TearDown() override
    {
        qputenv("PATH", savedPath);
        qunsetenv("PKEXEC_STATUS");
        FileItems::TearDown();
    }
    QString asked()
    {
        QFile file(log);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    QString log;
    QByteArray savedPath;
};

TEST_F(AdministratorFallback, UnchangedOwnerSucceedsAtOnce)
{
    const QString file = make(QStringLiteral("f"));
    EXPECT_TRUE(M::setItemOwner(file, M::returnItemOwner(file)));
    EXPECT_TRUE(M::setItemGroup(file, M::returnItemGroup(file)));
    EXPECT_TRUE(M::setItemPermissions(file, M::returnItemPermissions(file)));
    EXPECT_EQ(asked(), QString()) << "no password prompt";
}

TEST_F(AdministratorFallback, AFailedChangeAsksForAdministratorRights)
{
    const QString file = make(QStringLiteral("f"));
    const QString group = M::returnItemGroup(file);
    EXPECT_TRUE(M::setItemOwner(hfs(file), QStringLiteral("no-such-user")));
    EXPECT_EQ(asked(), QStringLiteral("chown -h no-such-user:%1 -- %2\n").arg(group, file));
    qputenv("PKEXEC_STATUS", "126"); // the prompt was cancelled
    EXPECT_FALSE(M::setItemGroup(file, QStringLiteral("no-such-group")));
}

// A path beginning with "-" reaches the helper as a path, after "--".
TEST_F(AdministratorFallback, APathBeginningWithADashIsAPath)
{
    const QString here = QDir::currentPath();
    QDir::setCurrent(dir.path());
    make(QStringLiteral("-R"));
    EXPECT_TRUE(M::setItemOwner(QStringLiteral("-R"), QStringLiteral("no-such-user")));
    QDir::setCurrent(here);
    EXPECT_TRUE(asked().endsWith(QStringLiteral(" -- -R\n"))) << asked().toStdString();
}

TEST_F(AdministratorFallback, APathThatIsNotUtf8ReachesTheHelperByteForByte)
{
    const QByteArray name = QFile::encodeName(dir.path()) + "/caf\xe9";
    const int made = ::open(name.constData(), O_CREAT | O_WRONLY, 0600);
    ASSERT_GE(made, 0);
    ::close(made);
    const QString path = PathCodec::decode(name);
    EXPECT_TRUE(M::setItemOwner(path, QStringLiteral("no-such-user")));
    QFile logged(log);
    ASSERT_TRUE(logged.open(QIODevice::ReadOnly));
    EXPECT_TRUE(logged.readAll().endsWith(" " + name + "\n"));
}

TEST_F(AdministratorFallback, PermissionsChangeDirectlyWhenTheyCan)
{
    const QString file = make(QStringLiteral("f"));
    EXPECT_TRUE(M::setItemPermissions(file, 0600));
    EXPECT_EQ(M::returnItemPermissions(file), QVariant(0600));
    EXPECT_TRUE(M::setItemPermissions(file, QStringLiteral("420")));
    EXPECT_EQ(M::returnItemPermissions(file), QVariant(420));
    EXPECT_EQ(asked(), QString());
}

// Sets or clears the immutable flag, which stops even root from changing
// an item; false where the file system or the process cannot.
bool setImmutable(const QString &path, bool on)
{
    const int fd = open(QFile::encodeName(path).constData(), O_RDONLY);
    if (fd < 0)
        return false;
    int flags = 0;
    bool ok = ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
    ok = ok && ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    close(fd);
    return ok;
}

TEST_F(AdministratorFallback, LockedItemsNeedAdministratorRights)
{
    const QString file = make(QStringLiteral("locked"));
    EXPECT_FALSE(M::returnItemIsLocked(file));
    if (!setImmutable(file, true))
        GTEST_SKIP() << "the immutable flag cannot be set here";
    EXPECT_TRUE(M::returnItemIsLocked(hfs(file)));
    EXPECT_EQ(M::attributesOfItem(file)->value("NSFileImmutable"), QVariant(true));
    EXPECT_TRUE(M::setItemPermissions(file, 0600)) << "the stand-in answers yes";
    EXPECT_EQ(asked(), QStringLiteral("chmod 384 -- %1\n").arg(file)) << "the text form, read as octal by chmod";
    setImmutable(file, false);
}

TEST_F(FileItems, ItemInformationUsesFreedesktopSources)
{
    const QString file = make(QStringLiteral("report.pdf"), "%PDF-1.4\n");
    const auto info = M::returnItemInfo(file);
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->value("LSItemContentType"), QVariant(QStringLiteral("application/pdf")));
    EXPECT_FALSE(info->value("LSItemDisplayKind").toString().isEmpty());
    EXPECT_EQ(info->value("LSItemExtension"), QVariant(QStringLiteral("pdf")));
    EXPECT_EQ(info->value("LSItemDisplayName"), QVariant(QStringLiteral("report.pdf")));
    EXPECT_TRUE(info->contains("LSItemRoleHandlerDisplayName"));
    EXPECT_EQ(info->value("LSItemExtensionIsHidden"), QVariant(false));
    EXPECT_TRUE(M::returnItemIsImage(file)) << "PDF counts as an image";

    EXPECT_FALSE(M::returnItemIsImage(make(QStringLiteral("notes.txt"), "hello")));
}

} // namespace
