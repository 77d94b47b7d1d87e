#include "MiscMethods.h"
#include "PathCodec.h"
#include "TestPrinting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include "TemporaryFolder.h"
#include <cerrno>
#include <gtest/gtest.h>
#include <QFile>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QString run(const QString &tool, const std::optional<QStringList> &arguments, const std::optional<QString> &data,
            const QString &directory = QString())
{
    return MiscMethods::runTask(tool, arguments, data, directory);
}

const QString sh = QStringLiteral("/bin/sh");

TEST(RunTask, WithoutArgumentsTheDataIsTheOnlyArgumentAndInputIsEmpty)
{
    EXPECT_EQ(run(QStringLiteral("/bin/cat"), std::nullopt, QStringLiteral("-")), QString())
        << "cat reading its input finds it empty";
    EXPECT_EQ(run(QStringLiteral("/bin/echo"), std::nullopt, QStringLiteral("-p")), QStringLiteral("-p"));
    EXPECT_EQ(run(QStringLiteral("/bin/echo"), QStringList(), QStringLiteral("a b")), QStringLiteral("a b"))
        << "an empty list counts as no arguments";
    EXPECT_EQ(run(QStringLiteral("/bin/cat"), std::nullopt, QStringLiteral("/dev/null")), QString())
        << "cat of the one argument reads no input";
}

TEST(RunTask, WithArgumentsTheDataIsFedOnStandardInput)
{
    EXPECT_EQ(run(QStringLiteral("/bin/cat"), QStringList{"-"}, QStringLiteral("abc")), QStringLiteral("abc"));
    EXPECT_EQ(run(sh, QStringList{"-c", "tr a-z A-Z"}, QString::fromUtf8("crème")), QString::fromUtf8("CRèME"));
    EXPECT_EQ(run(QStringLiteral("/bin/cat"), QStringList{"-"}, std::nullopt), QString());
}

TEST(RunTask, MixesStandardErrorAndDropsOnlyTrailingLineFeeds)
{
    EXPECT_EQ(run(sh, QStringList{"-c", "echo out1; echo err >&2; echo out2"}, std::nullopt),
              QStringLiteral("out1\nerr\nout2"));
    EXPECT_EQ(run(sh, QStringList{"-c", "printf 'a\\n\\nb\\n\\n\\n'"}, std::nullopt), QStringLiteral("a\n\nb"));
    EXPECT_EQ(run(sh, QStringList{"-c", "printf 'a\\r\\n'"}, std::nullopt), QStringLiteral("a\r"));
}

// Output arrives in reads of at most 64 KiB; a character a read's end cuts
// in two is not output that is not UTF-8, so nothing of it is lost. Output
// that really is not UTF-8 is dropped.
TEST(RunTask, ACharacterCutByAReadIsKeptAndOnlyBytesThatAreNotUtf8AreDropped)
{
    const QString accents = run(QStringLiteral("/usr/bin/perl"),
                                QStringList{"-CS", "-e", "print 'a' . \"\\x{e9}\" x 100000; print \"\\x{1F4F7}\" x 30000"},
                                std::nullopt);
    EXPECT_EQ(accents, QStringLiteral("a") + QString(100000, QChar(0xE9)) + QString::fromUtf8("📷").repeated(30000));
    EXPECT_EQ(run(sh, QStringList{"-c", "printf 'ok'; sleep 0.1; printf '\\377'"}, std::nullopt), QStringLiteral("ok"));
}

TEST(RunTask, BlankWorkingDirectoryMeansTheCurrentOne)
{
    TemporaryFolder dir;
    const QString here = QDir::currentPath();
    EXPECT_EQ(run(QStringLiteral("/bin/pwd"), QStringList{"-P"}, std::nullopt, QString()), QDir(here).canonicalPath());
    EXPECT_EQ(run(QStringLiteral("/bin/pwd"), QStringList{"-P"}, std::nullopt, QStringLiteral("   ")),
              QDir(here).canonicalPath());
    EXPECT_EQ(run(QStringLiteral("/bin/pwd"), QStringList{"-P"}, std::nullopt, dir.path()),
              QDir(dir.path()).canonicalPath());
}

// Paths are bytes: a program, a working directory and an argument whose
// names are not UTF-8 reach the system unchanged.
TEST(RunTask, PathsThatAreNotUtf8PassByteForByte)
{
    TemporaryFolder dir;
    const QByteArray odd = QFile::encodeName(dir.path()) + "/caf\xe9 $(x)";
    ASSERT_EQ(mkdir(odd.constData(), 0700), 0);
    const QByteArray tool = odd + "/t\xff";
    ASSERT_EQ(symlink("/bin/sh", tool.constData()), 0);
    const QString folder = PathCodec::decode(odd);
    const QString program = PathCodec::decode(tool);
    // The tool prints the bytes of its working directory and of its argument in hex.
    const QString shown = run(program, QStringList{"-c", "printf %s \"$(pwd -P)\" | od -An -tx1 | tr -d ' \\n'; echo; printf %s \"$0\" | od -An -tx1 | tr -d ' \\n'",
                                                   folder + QStringLiteral("/f\u00e9")},
                              std::nullopt, folder);
    EXPECT_EQ(shown, QString::fromLatin1((odd.toHex() + "\n" + (odd + "/f\xc3\xa9").toHex())));
}

TEST(RunTask, LaunchFailuresAnswerAnErrorText)
{
    testing::internal::CaptureStderr();
    const QString missing = run(QStringLiteral("/no/such/tool"), std::nullopt, QStringLiteral("x"));
    TemporaryFolder dir;
    QFile plain(dir.filePath(QStringLiteral("not-a-tool")));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    plain.close();
    const QString notExecutable = run(plain.fileName(), std::nullopt, QStringLiteral("x"));
    const QString noDirectory = run(QStringLiteral("/bin/true"), QStringList{"x"}, std::nullopt,
                                    QStringLiteral("/no/such/dir"));
    const QString nothingToRun = run(QStringLiteral("/bin/true"), std::nullopt, std::nullopt);
    const QString logged = QString::fromStdString(testing::internal::GetCapturedStderr());
    EXPECT_TRUE(missing.startsWith(QStringLiteral("runTask Error: NSInvalidArgumentException: launch path not "
                                                  "accessible: /no/such/tool")))
        << missing.toStdString();
    EXPECT_TRUE(notExecutable.contains(QStringLiteral("launch path not accessible: ") + plain.fileName()));
    EXPECT_EQ(noDirectory,
              QStringLiteral("runTask Error: NSInvalidArgumentException: working directory doesn't exist: /no/such/dir"));
    EXPECT_TRUE(nothingToRun.startsWith(QStringLiteral("runTask Error: NSInvalidArgumentException:")));
    EXPECT_EQ(logged.count(QStringLiteral("runTask Error: ")), 4) << "each failure is logged";
}

TEST(RunTask, WritingALotBeforeReadingCannotDeadlock)
{
    // The tool fills its output pipe many times over before it reads a
    // megabyte of input; both sides must move at once.
    const QString input(1 << 20, u'i');
    const QString output = run(sh, QStringList{"-c", "head -c 1048576 /dev/zero | tr '\\0' o; wc -c"}, input);
    EXPECT_EQ(output.size(), (1 << 20) + 7);
    EXPECT_EQ(output.count(u'o'), 1 << 20);
    EXPECT_TRUE(output.endsWith(QStringLiteral("1048576")));
}

TEST(RunTask, ToolThatStopsReadingDoesNotStopUs)
{
    const QString input(1 << 20, u'x');
    EXPECT_EQ(run(sh, QStringList{"-c", "head -c 3"}, input), QStringLiteral("xxx"));
}

TEST(RunTask, DropsAChunkThatIsNotUtf8AndLeavesNoZombie)
{
    EXPECT_EQ(run(sh, QStringList{"-c", "printf 'ab\\377'"}, std::nullopt), QString());
    // Asked without reaping anything ourselves: is any child left, finished
    // or not? A finished one is reaped at once or very soon after.
    auto childrenLeft = [] {
        siginfo_t info{};
        return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
    };
    QElapsedTimer clock;
    clock.start();
    while (childrenLeft() && clock.elapsed() < 2000)
        usleep(10000);
    EXPECT_FALSE(childrenLeft()) << "the child was reaped";
}

TEST(RunTask, DoesNotWaitForAToolThatClosedItsOutput)
{
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(run(sh, QStringList{"-c", "echo done; exec >&- 2>&-; sleep 3"}, std::nullopt), QStringLiteral("done"));
    EXPECT_LT(clock.elapsed(), 2500);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
