// GLib's headers use names Qt defines as keywords, so they come first.
#include <gio/gdesktopappinfo.h>

#include "DesktopEntries.h"
#include "MiscMethods.h"
#include "TestPrinting.h"

#include <QCoreApplication>
#include <QFile>
#include "TemporaryFolder.h"
#include <QThread>
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

    TemporaryFolder config;
};

TEST_F(LoginItems, SettingWritesOneEntryThatStartsThisExecutable)
{
    EXPECT_FALSE(MiscMethods::returnStartupItem());
    MiscMethods::setStartupItem(true);
    MiscMethods::setStartupItem(true);
    EXPECT_TRUE(MiscMethods::returnStartupItem());
    QFile file(entryPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    EXPECT_EQ(text.count(QStringLiteral("[Desktop Entry]")), 1);
    EXPECT_TRUE(text.contains(QCoreApplication::applicationFilePath())) << text.toStdString();
    MiscMethods::setStartupItem(false);
    EXPECT_FALSE(QFile::exists(entryPath()));
    EXPECT_FALSE(MiscMethods::returnStartupItem());
    MiscMethods::setStartupItem(false);
}

TEST_F(LoginItems, HiddenOrForeignEntriesDoNotCount)
{
    const QString self = QCoreApplication::applicationFilePath();
    writeEntry(QStringLiteral("[Desktop Entry]\nType=Application\nExec=%1 --flag\n").arg(self));
    EXPECT_TRUE(MiscMethods::returnStartupItem()) << "arguments after the program are fine";
    writeEntry(QStringLiteral("[Desktop Entry]\nExec=\"%1\"\nHidden=true\n").arg(self));
    EXPECT_FALSE(MiscMethods::returnStartupItem());
    writeEntry(QStringLiteral("[Desktop Entry]\nExec=/bin/true\n"));
    EXPECT_FALSE(MiscMethods::returnStartupItem());
    writeEntry(QStringLiteral("[Other Group]\nExec=%1\n").arg(self));
    EXPECT_FALSE(MiscMethods::returnStartupItem());
}

// A program whose path holds a space, "%", quotes, a backtick, "$" and a
// backslash starts as itself from the Exec line written for it, as GIO
// (the desktop's own launcher) reads the entry.
TEST(ExecLines, AnyProgramPathStartsAsItself)
{
    TemporaryFolder dir;
    const QString program = dir.path() + QStringLiteral("/my 100% \"best\" `app` $HOME \\x");
    const QString marker = dir.filePath(QStringLiteral("started"));
    QFile script(program);
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write(QStringLiteral("#!/bin/sh\ntouch '%1'\n").arg(marker).toUtf8());
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    const QString line = DesktopEntries::execWord(program);
    EXPECT_EQ(DesktopEntries::programOfExec(line), program);
    const QString entry = dir.filePath(QStringLiteral("t.desktop"));
    QFile file(entry);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QStringLiteral("[Desktop Entry]\nType=Application\nName=T\nExec=%1\n").arg(line).toUtf8());
    file.close();
    GDesktopAppInfo *info = g_desktop_app_info_new_from_filename(QFile::encodeName(entry).constData());
    ASSERT_NE(info, nullptr);
    GError *error = nullptr;
    EXPECT_TRUE(g_app_info_launch(G_APP_INFO(info), nullptr, nullptr, &error)) << (error ? error->message : "");
    g_clear_error(&error);
    g_object_unref(info);
    for (int wait = 0; wait < 100 && !QFile::exists(marker); ++wait)
        QThread::msleep(50);
    EXPECT_TRUE(QFile::exists(marker)) << line.toStdString();
}

} // namespace
