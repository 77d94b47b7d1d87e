#include "PathConversion.h"
#include "TestPrinting.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace PathConversion;

namespace {

struct PathCase {
    const char *name;
    QString posix;
    QString hfs;
    friend void PrintTo(const PathCase &c, std::ostream *os) { *os << c.name; }
};

class Paths : public testing::TestWithParam<PathCase> {
protected:
    void SetUp() override { setRootVolumeName(QStringLiteral("Disk")); }
    void TearDown() override { setRootVolumeName(QString()); }
};

TEST_P(Paths, ConvertBothWays)
{
    EXPECT_EQ(pathHFS(GetParam().posix), GetParam().hfs);
    QString back = GetParam().posix;
    if (back.size() > 1 && back.endsWith(u'/'))
        back.chop(1); // a folder's POSIX path comes back without its slash
    EXPECT_EQ(pathPOSIX(GetParam().hfs), back);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Paths,
    testing::Values(PathCase{"file", "/home/ann/a.txt", "Disk:home:ann:a.txt"},
                    PathCase{"folder_keeps_separator", "/home/ann/", "Disk:home:ann:"},
                    PathCase{"root", "/", "Disk:"},
                    PathCase{"non_ascii", QString::fromUtf8("/tmp/crème"), QString::fromUtf8("Disk:tmp:crème")}),
    [](const auto &info) { return info.param.name; });

TEST(PathConversion, PathsAlreadyInTheOtherFormPassThrough)
{
    EXPECT_EQ(pathHFS(QStringLiteral("Disk:a")), QStringLiteral("Disk:a"));
    EXPECT_EQ(pathPOSIX(QStringLiteral("/a/b")), QStringLiteral("/a/b"));
    EXPECT_EQ(pathPOSIX(QString()), QString());
    EXPECT_EQ(pathHFS(QString()), QString());
}

TEST(PathConversion, SlashesInNamesBecomeColons)
{
    setRootVolumeName(QStringLiteral("Disk"));
    EXPECT_EQ(pathPOSIX(QStringLiteral("Disk:tmp:a/b")), QStringLiteral("/tmp/a:b"));
    EXPECT_EQ(pathHFS(QStringLiteral("/tmp/a:b")), QStringLiteral("/tmp/a:b"))
        << "a path with a colon is taken as already converted";
}

TEST(PathConversion, MediaVolumesAndRelativePaths)
{
    setRootVolumeName(QStringLiteral("Disk"));
    EXPECT_EQ(pathHFS(QStringLiteral("/mnt/USB/photos/x.jpg")), QStringLiteral("USB:photos:x.jpg"));
    EXPECT_EQ(pathHFS(QStringLiteral("/mnt/USB/")), QStringLiteral("USB:"));
    const QString unmounted = pathPOSIX(QStringLiteral("NoSuchVolume:photos:x.jpg"));
    EXPECT_TRUE(unmounted.startsWith(QStringLiteral("/media/")) && unmounted.endsWith(QStringLiteral("/NoSuchVolume/photos/x.jpg")))
        << unmounted.toStdString();
    EXPECT_EQ(pathHFS(unmounted), QStringLiteral("NoSuchVolume:photos:x.jpg"));
    EXPECT_EQ(pathHFS(QStringLiteral("/media/ann/Card/DCIM/")), QStringLiteral("Card:DCIM:"));
    EXPECT_EQ(pathPOSIX(QStringLiteral(":a:b")), QStringLiteral("a/b"));
    EXPECT_EQ(pathHFS(QStringLiteral("rel/x")), pathHFS(QDir::currentPath() + QStringLiteral("/rel/x")));
    EXPECT_EQ(pathHFS(QStringLiteral("/a/../b/./c")), QStringLiteral("Disk:b:c"));
    setRootVolumeName(QString());
    EXPECT_FALSE(rootVolumeName().isEmpty()) << "the label, or the default name";
}

} // namespace
