#include "MiscMethods.h"
#include "TestPrinting.h"

#include <QRegularExpression>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace {

TEST(SystemInformation, VersionIsThreeNumbersAndTheFamily)
{
    const QString version = MiscMethods::returnOSVersion();
    const auto match = QRegularExpression(QStringLiteral("^(\\d+)\\.(\\d+)\\.(\\d+) \\((Intel|PPC)\\)$")).match(version);
    ASSERT_TRUE(match.hasMatch()) << version.toStdString();
    utsname machine{};
    uname(&machine);
    const bool x86 = QString::fromLatin1(machine.machine).contains(QStringLiteral("86"));
    EXPECT_EQ(match.captured(4), x86 ? QStringLiteral("Intel") : QStringLiteral("PPC"));
    const bool atLeast104 = match.captured(1).toInt() > 10 || (match.captured(1).toInt() == 10 && match.captured(2).toInt() >= 4);
    EXPECT_EQ(MiscMethods::return104Plus(), atLeast104);
    EXPECT_TRUE(!MiscMethods::return105Plus() || MiscMethods::return104Plus());
}

TEST(SystemInformation, NamesComeFromTheSystem)
{
    char host[256] = {};
    gethostname(host, sizeof host - 1);
    EXPECT_EQ(MiscMethods::returnHostName(), QString::fromLocal8Bit(host));
    EXPECT_EQ(MiscMethods::returnShortUserName(), QString::fromLocal8Bit(getpwuid(geteuid())->pw_name));
    EXPECT_FALSE(MiscMethods::returnFullUserName().contains(u','));
}

TEST(SystemInformation, InitialsAreTheFirstCharacterOfEachWord)
{
    EXPECT_EQ(MiscMethods::initialsOf(QStringLiteral("John Ronald Tolkien")), QStringLiteral("JRT"));
    EXPECT_EQ(MiscMethods::initialsOf(QStringLiteral("  ada   lovelace ")), QStringLiteral("al"));
    EXPECT_EQ(MiscMethods::initialsOf(QString::fromUtf8("Émile Zola-Durand")), QString::fromUtf8("ÉZ"));
    EXPECT_EQ(MiscMethods::initialsOf(QString()), QString(""));
    EXPECT_FALSE(MiscMethods::initialsOf(QString()).isNull());
}

} // namespace
