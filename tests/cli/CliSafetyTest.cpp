// nomen-cli used as a user would, and as bad luck would: odd arguments and
// names, rules that make names with "/", kills at exact renames, Ctrl-C,
// another run holding the lock, damaged journals, a full disk.

#include "CliRunner.h"
#include "TestPrinting.h"
#include "engine/FileTree.h"

#include "TemporaryFolder.h"
#include <csignal>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/mount.h>

namespace {

using Files = QMap<QString, QByteArray>;

class CliSafety : public testing::Test {
protected:
    void reset(const QStringList &files)
    {
        tree.clear();
        ASSERT_TRUE(tree.makeAll(files));
    }

    TemporaryFolder dir;
    FileTree tree{dir.filePath(QStringLiteral("Trip"))};
    CliRunner cli;
};

TEST_F(CliSafety, FoldersAreListedHoweverTheyAreNamed)
{
    reset({"IMG_1.jpg", "IMG_2.jpg"});
    ASSERT_EQ(symlink("Trip", PathCodec::encode(dir.filePath("link")).constData()), 0);
    const CliRun absolute = cli.run({"--prefix", "x ", tree.root()});
    ASSERT_EQ(absolute.exitCode, 0);
    EXPECT_TRUE(absolute.out.contains(tree.path("IMG_1.jpg") + " -> x IMG_1.jpg")) << absolute.out.toStdString();
    cli.workingDirectory = dir.path();
    for (const char *argument : {"Trip", "Trip/", "./Trip", "link", "link/"})
        EXPECT_EQ(cli.run({"--prefix", "x ", QString::fromLatin1(argument)}).out, absolute.out) << argument;
    const CliRun missing = cli.run({"--prefix", "x ", "nowhere"});
    EXPECT_EQ(missing.exitCode, 66);
    EXPECT_EQ(missing.err, "nomen-cli: no such folder or file \"nowhere\"\n");
}

TEST_F(CliSafety, OptionsThatTakeNumbersRefuseAnythingElse)
{
    reset({"IMG_1.jpg"});
    for (const char *option : {"start", "step", "zeros", "trim-start", "trim-end"}) {
        const CliRun run = cli.run({QStringLiteral("--") + QLatin1String(option), "notanumber", "--apply", tree.root()});
        EXPECT_EQ(run.exitCode, 64) << option;
        EXPECT_EQ(run.err, QStringLiteral("nomen-cli: --%1 takes a whole number, not \"notanumber\"\n").arg(QLatin1String(option)));
    }
    EXPECT_EQ(cli.run({"--apply", "--undo", tree.root()}).exitCode, 64);
    EXPECT_EQ(tree.files(), Files({{"IMG_1.jpg", "IMG_1.jpg"}}));
}

TEST_F(CliSafety, NewNamesThatAreNotSingleNamesAreConflictsAndNothingMoves)
{
    reset({"IMG_1.jpg", "IMG_2.jpg"});
    const QStringList rules[] = {{"--prefix", "a/b "},
                                 {"--grep", "--search", "^(.*)$", "--replace", "sub/$1"},
                                 {"--prefix", "«date %m/%d» ", "--date-source", "now"},
                                 {"--prefix", "../up_"}};
    for (const QStringList &rule : rules) {
        const CliRun run = cli.run(rule + QStringList{"--apply", tree.root()});
        EXPECT_EQ(run.exitCode, 1) << rule.join(' ').toStdString();
        EXPECT_EQ(run.out.count(QStringLiteral("holds \"/\"")), 2) << run.out.toStdString();
        EXPECT_EQ(tree.files(), Files({{"IMG_1.jpg", "IMG_1.jpg"}, {"IMG_2.jpg", "IMG_2.jpg"}}));
        EXPECT_TRUE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size() == 1) << "nothing left the folder";
    }
}

TEST_F(CliSafety, NamesThatAreNotUtf8KeepTheirBytesThroughGrep)
{
    const QString odd = PathCodec::decode("bad\xffname.jpg");
    reset({odd, "ok.jpg"});
    const CliRun unmatched = cli.run({"--grep", "--search", "zzz", "--replace", "q", "--apply", tree.root()});
    EXPECT_EQ(unmatched.exitCode, 0);
    EXPECT_EQ(unmatched.out.count("unchanged"), 2) << unmatched.out.toStdString();
    const CliRun json = cli.run({"--json", "--grep", "--search", "^(\\w+)", "--replace", "P_$1", tree.root()});
    EXPECT_TRUE(json.out.contains("P_bad\\udcffname.jpg")) << "a byte that is not UTF-8, escaped in JSON: " << json.out.toStdString();
    EXPECT_EQ(cli.run({"--grep", "--search", "^(\\w+)", "--replace", "P_$1", "--apply", tree.root()}).exitCode, 0);
    EXPECT_EQ(tree.files(), Files({{PathCodec::decode("P_bad\xffname.jpg"), PathCodec::encode(odd)}, {"P_ok.jpg", "ok.jpg"}}));
}

// Swaps and rotations of names by a regular expression, as in the field.
struct Rule {
    QStringList arguments;
    QStringList files;
    Files renamed;
};

const Rule swaps{{"--grep", "--search", "^(k\\d)-(\\w)-(\\w)$", "--replace", "$1-$3-$2"},
                 {"k1-a-b", "k1-b-a", "k2-a-b", "k2-b-a", "k3-a-b", "k3-b-a", "k4-a-b"},
                 {{"k1-a-b", "k1-b-a"}, {"k1-b-a", "k1-a-b"}, {"k2-a-b", "k2-b-a"}, {"k2-b-a", "k2-a-b"},
                  {"k3-a-b", "k3-b-a"}, {"k3-b-a", "k3-a-b"}, {"k4-b-a", "k4-a-b"}}};
// Two three-cycles and a chain of two.
const Rule rotations{{"--grep", "--search", "^(r\\d)-(\\w)-(\\w)-(\\w)$", "--replace", "$1-$3-$4-$2"},
                     {"r1-a-b-c", "r1-b-c-a", "r1-c-a-b", "r2-a-b-c", "r2-b-c-a", "r2-c-a-b", "r3-a-b-c", "r3-b-c-a"},
                     {{"r1-b-c-a", "r1-a-b-c"}, {"r1-c-a-b", "r1-b-c-a"}, {"r1-a-b-c", "r1-c-a-b"},
                      {"r2-b-c-a", "r2-a-b-c"}, {"r2-c-a-b", "r2-b-c-a"}, {"r2-a-b-c", "r2-c-a-b"},
                      {"r3-b-c-a", "r3-a-b-c"}, {"r3-c-a-b", "r3-b-c-a"}}};

Files firstLayout(const Rule &rule)
{
    Files layout;
    for (const QString &file : rule.files)
        layout.insert(file, file.toLatin1());
    return layout;
}

TEST_F(CliSafety, KilledAfterAnyRenameTheBatchWaitsThenIsFinishedOrRolledBack)
{
    for (const Rule &rule : {swaps, rotations}) {
        const QStringList apply = rule.arguments + QStringList{"--apply", tree.root()};
        int k = 1;
        for (;; ++k) {
            reset(rule.files);
            cli.signalAfter(k);
            const CliRun killed = cli.run(apply);
            cli.noFaults();
            if (!killed.crashed) {
                EXPECT_EQ(tree.files(), rule.renamed) << "fewer renames than " << k;
                cli.run({"--undo"});
                break;
            }
            const QString where = QStringLiteral("killed after rename %1 of %2").arg(k).arg(rule.arguments.last());
            const CliRun dry = cli.run(rule.arguments + QStringList{tree.root()});
            EXPECT_EQ(dry.exitCode, 0) << where.toStdString();
            EXPECT_TRUE(dry.err.contains("cut short")) << dry.err.toStdString();
            const CliRun again = cli.run(apply);
            EXPECT_EQ(again.exitCode, 3) << where.toStdString();
            EXPECT_TRUE(again.err.contains("nomen-cli --finish")) << again.err.toStdString();
            EXPECT_EQ(cli.run({"--undo"}).exitCode, 3) << where.toStdString();
            if (k % 2) {
                ASSERT_EQ(cli.run({"--finish"}).exitCode, 0) << where.toStdString();
                ASSERT_EQ(tree.files(), rule.renamed) << where.toStdString();
                ASSERT_EQ(cli.run({"--undo"}).exitCode, 0) << where.toStdString();
            } else {
                ASSERT_EQ(cli.run({"--roll-back"}).exitCode, 0) << where.toStdString();
                EXPECT_EQ(cli.run({"--undo"}).err, "nomen-cli: nothing to undo\n") << where.toStdString();
            }
            ASSERT_EQ(tree.files(), firstLayout(rule)) << where.toStdString();
        }
        EXPECT_GE(k, 8) << "every rename of the batch was a place to stop";
    }
}

TEST_F(CliSafety, KilledWhileUndoingTheUndoIsFinishedNotDoneTwice)
{
    const QStringList apply = swaps.arguments + QStringList{"--apply", tree.root()};
    for (int k = 1; k <= 9; ++k) {
        reset(swaps.files);
        ASSERT_EQ(cli.run(apply).exitCode, 0);
        cli.signalAfter(k);
        ASSERT_TRUE(cli.run({"--undo"}).crashed) << k;
        cli.noFaults();
        EXPECT_EQ(cli.run({"--undo"}).exitCode, 3) << "an undo cut short is never started again";
        ASSERT_EQ(cli.run({"--finish"}).exitCode, 0) << k;
        ASSERT_EQ(tree.files(), firstLayout(swaps)) << k;
        EXPECT_EQ(cli.run({"--undo"}).err, "nomen-cli: nothing to undo\n") << k;
    }
}

TEST_F(CliSafety, CtrlCStopsBetweenTwoMovesAndTheBatchCanBeFinished)
{
    reset(swaps.files);
    cli.signalAfter(4, SIGINT);
    const CliRun stopped = cli.run(swaps.arguments + QStringList{"--apply", tree.root()});
    cli.noFaults();
    EXPECT_EQ(stopped.exitCode, 130);
    EXPECT_TRUE(stopped.err.contains("interrupted between two moves")) << stopped.err.toStdString();
    EXPECT_EQ(cli.run({"--finish"}).exitCode, 0);
    EXPECT_EQ(tree.files(), swaps.renamed);
}

TEST_F(CliSafety, AnotherRunHoldingTheLockIsWaitedForThenRefused)
{
    reset({"IMG_1.jpg"});
    ASSERT_TRUE(QDir().mkpath(cli.journals()));
    QFile lock(cli.journals() + QStringLiteral("/lock"));
    ASSERT_TRUE(lock.open(QIODevice::ReadWrite));
    ASSERT_EQ(flock(lock.handle(), LOCK_EX), 0);
    for (const QStringList &arguments : {QStringList{"--prefix", "x", "--apply", tree.root()}, QStringList{"--undo"}}) {
        const CliRun busy = cli.run(arguments);
        EXPECT_EQ(busy.exitCode, 75);
        EXPECT_TRUE(busy.err.startsWith("nomen-cli: another Nomen run is renaming files")) << busy.err.toStdString();
    }
    EXPECT_EQ(tree.files(), Files({{"IMG_1.jpg", "IMG_1.jpg"}}));
    lock.close();
    EXPECT_EQ(cli.run({"--prefix", "x", "--apply", tree.root()}).exitCode, 0);
}

TEST_F(CliSafety, JournalsThatCannotBeBelievedAreKeptAndNothingMoves)
{
    const QString pending = cli.journals() + QStringLiteral("/pending.journal");
    const auto cutShort = [&] {
        reset(swaps.files);
        cli.signalAfter(2);
        cli.run(swaps.arguments + QStringList{"--apply", tree.root()});
        cli.noFaults();
    };
    struct Case {
        const char *name;
        std::function<void()> damage;
        QString reason;
    };
    const Case cases[] = {
        {"garbage", [&] { cutShort(); QFile file(pending); file.open(QIODevice::WriteOnly); file.write("mv / /dev/null\n"); },
         "it is not a Nomen journal"},
        {"one byte changed", [&] {
             cutShort();
             QFile file(pending);
             file.open(QIODevice::ReadWrite);
             QByteArray text = file.readAll();
             text[text.indexOf("\nitem ") + 6] = '7';
             file.seek(0);
             file.write(text);
         }, "its checksum does not match"},
        {"cut off", [&] { cutShort(); QFile(pending).resize(QFileInfo(pending).size() / 2); }, "it is not whole"},
        {"readable by others", [&] { cutShort(); QFile(pending).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther); },
         "others may read or change it"},
        {"a link", [&] {
             cutShort();
             QFile::rename(pending, dir.filePath("elsewhere.journal"));
             QFile::link(dir.filePath("elsewhere.journal"), pending);
         }, "it is a symbolic link"},
    };
    for (const Case &c : cases) {
        c.damage();
        const Files state = tree.files();
        const QByteArray kept = QFileInfo(pending).isSymLink() ? "link" : [&] { QFile f(pending); f.open(QIODevice::ReadOnly); return f.readAll(); }();
        for (const QStringList &arguments : {QStringList{"--finish"}, QStringList{"--roll-back"}, QStringList{"--undo"},
                                              swaps.arguments + QStringList{"--apply", tree.root()}}) {
            const CliRun refused = cli.run(arguments);
            EXPECT_EQ(refused.exitCode, 3) << c.name << " " << arguments.first().toStdString();
            EXPECT_TRUE(refused.err.contains(QStringLiteral("cannot be believed (%1)").arg(c.reason))) << c.name << ": " << refused.err.toStdString();
        }
        EXPECT_EQ(tree.files(), state) << c.name;
        EXPECT_TRUE(QFileInfo::exists(pending) || QFileInfo(pending).isSymLink()) << c.name << ": kept for inspection";
        if (!QFileInfo(pending).isSymLink()) {
            QFile f(pending);
            f.open(QIODevice::ReadOnly);
            EXPECT_EQ(f.readAll(), kept) << c.name;
        }
        QFile::remove(pending);
    }
}

TEST_F(CliSafety, FileSystemsWithoutTheNoReplaceFlagStillNeverReplace)
{
    reset(swaps.files);
    cli.signalAfter(-1);
    cli.environment.insert(QStringLiteral("NOMEN_FAULT_NO_REPLACE_FLAG"), QStringLiteral("1"));
    EXPECT_EQ(cli.run(swaps.arguments + QStringList{"--apply", tree.root()}).exitCode, 0);
    EXPECT_EQ(tree.files(), swaps.renamed);
    EXPECT_EQ(cli.run({"--undo"}).exitCode, 0);
    EXPECT_EQ(tree.files(), firstLayout(swaps));
}

// The journal folder on a small file system that is full.
TEST_F(CliSafety, AFullDiskUnderTheJournalMovesNothing)
{
    if (mount("tmpfs", PathCodec::encode(cli.data.path()).constData(), "tmpfs", 0, "size=64k,mode=0700") != 0)
        GTEST_SKIP() << "cannot mount a small file system here (" << strerror(errno)
                     << "); SafeMoves.AJournalThatCannotBeWrittenMovesNothing fails the writes instead";
    QStringList files;
    for (int i = 0; i < 400; ++i)
        files.append(QStringLiteral("photo %1 with a long enough name to fill the journal.jpg").arg(i));
    reset(files);
    {
        QFile filler(cli.data.path() + QStringLiteral("/filler"));
        filler.open(QIODevice::WriteOnly);
        const QByteArray block(4096, 'x');
        while (filler.write(block) == block.size() && filler.flush()) {
        }
    }
    const CliRun full = cli.run({"--prefix", "x ", "--apply", tree.root()});
    umount2(PathCodec::encode(cli.data.path()).constData(), MNT_DETACH);
    EXPECT_FALSE(full.crashed);
    EXPECT_EQ(full.exitCode, 2);
    EXPECT_TRUE(full.err.contains("the journal cannot be written")) << full.err.toStdString();
    EXPECT_TRUE(full.err.contains("No space left on device")) << full.err.toStdString();
    EXPECT_EQ(tree.files().size(), 400);
    EXPECT_TRUE(tree.files().contains("photo 0 with a long enough name to fill the journal.jpg"));
}

} // namespace
