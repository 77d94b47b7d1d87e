#include "MiscMethods.h"
#include "TestPrinting.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class LoginItems : public testing::Test {
protected:
    void SetUp() override { qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit()); }
    void TearDown() override { qunsetenv("XDG_CONFIG_HOME"); }

    QString entryPath() const { return config.path() + QStringLiteral("/autostart/nomen.desktop"); }
    void writeEntry(const QString &text)
    {
        QDir().mkpath(config.path() + QStringLiteral("/autostart"));
        QFile file(entryPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }

    QTemporaryDir config;
};

TEST_F(LoginItems, SettingWritesOneEntryThatStartsThisExecutable)
{
    EXPECT_FALSE(ROZ_MiscMethods::returnStartupItem());
    ROZ_MiscMethods::setStartupItem(true);
    ROZ_MiscMethods::setStartupItem(true);
    EXPECT_TRUE(ROZ_MiscMethods::returnStartupItem());
    QFile file(entryPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    EXPECT_EQ(text.count(QStringLiteral("[Desktop Entry]")), 1);
    EXPECT_TRUE(text.contains(QCoreApplication::applicationFilePath())) << text.toStdString();
    ROZ_MiscMethods::setStartupItem(false);
    EXPECT_FALSE(QFile::exists(entryPath()));
    EXPECT_FALSE(ROZ_MiscMethods::returnStartupItem());
    ROZ_MiscMethods::setStartupItem(false);
}

TEST_F(LoginItems, HiddenOrForeignEntriesDoNotCount)
{
    const QString self = QCoreApplication::applicationFilePath();
    writeEntry(QStringLiteral("[Desktop Entry]\nType=Application\nExec=%1 --flag\n").arg(self));
    EXPECT_TRUE(ROZ_MiscMethods::returnStartupItem()) << "arguments after the program are fine";
    writeEntry(QStringLiteral("[Desktop Entry]\nExec=\"%1\"\nHidden=true\n").arg(self));
    EXPECT_FALSE(ROZ_MiscMethods::returnStartupItem());
    writeEntry(QStringLiteral("[Desktop Entry]\nExec=/bin/true\n"));
    EXPECT_FALSE(ROZ_MiscMethods::returnStartupItem());
    writeEntry(QStringLiteral("[Other Group]\nExec=%1\n").arg(self));
    EXPECT_FALSE(ROZ_MiscMethods::returnStartupItem());
}

} // namespace
