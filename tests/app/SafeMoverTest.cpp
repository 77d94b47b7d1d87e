#include "PathCodec.h"
#include "SafeMover.h"
#include "TestPrinting.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

class SafeMoves : public testing::Test {
protected:
    QString path(const QString &name) const { return dir.filePath(QStringLiteral("files/") + name); }
    void make(const QString &name, const QByteArray &contents)
    {
        QDir().mkpath(QFileInfo(path(name)).absolutePath());
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }
    QStringList listing() const
    {
        QStringList names = QDir(dir.filePath(QStringLiteral("files"))).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        names.sort();
        return names;
    }
    SafeMover::Move move(const QString &from, const QString &to) const { return {path(from), path(to)}; }
    static QList<SafeMover::Status> statuses(const std::vector<SafeMover::Outcome> &outcomes)
    {
        QList<SafeMover::Status> list;
        for (const auto &outcome : outcomes)
            list.append(outcome.status);
        return list;
    }

    QTemporaryDir dir;
    SafeMover mover{dir.filePath(QStringLiteral("journal"))};
};

using S = SafeMover::Status;

TEST_F(SafeMoves, ChainsSwapsAndCyclesAllArrive)
{
    make("a", "A");
    make("b", "B");
    make("c", "C");
    make("x", "X");
    make("y", "Y");
    // a->b->c->d is a chain; x<->y is a swap.
    const auto outcomes = mover.apply({move("a", "b"), move("b", "c"), move("c", "d"), move("x", "y"), move("y", "x")});
    EXPECT_EQ(statuses(outcomes), QList<S>({S::Renamed, S::Renamed, S::Renamed, S::Renamed, S::Renamed}));
    EXPECT_EQ(read("b"), QByteArray("A"));
    EXPECT_EQ(read("c"), QByteArray("B"));
    EXPECT_EQ(read("d"), QByteArray("C"));
    EXPECT_EQ(read("x"), QByteArray("Y"));
    EXPECT_EQ(read("y"), QByteArray("X"));
    EXPECT_EQ(listing(), QStringList({"b", "c", "d", "x", "y"})) << "nothing left under a temporary name";

    // A three-cycle, then undo puts everything back.
    const auto cycle = mover.apply({move("b", "c"), move("c", "d"), move("d", "b")});
    EXPECT_EQ(statuses(cycle), QList<S>({S::Renamed, S::Renamed, S::Renamed}));
    EXPECT_EQ(read("c"), QByteArray("A"));
    EXPECT_EQ(read("d"), QByteArray("B"));
    EXPECT_EQ(read("b"), QByteArray("C"));
    mover.undoLast();
    EXPECT_EQ(read("b"), QByteArray("A"));
    EXPECT_EQ(read("c"), QByteArray("B"));
    EXPECT_EQ(read("d"), QByteArray("C"));
    EXPECT_EQ(listing(), QStringList({"b", "c", "d", "x", "y"}));
}

TEST_F(SafeMoves, ShiftByOneOverAThousandNumberedFiles)
{
    std::vector<SafeMover::Move> moves;
    for (int i = 1; i <= 1000; ++i) {
        make(QStringLiteral("%1.jpg").arg(i, 4, 10, QLatin1Char('0')), QByteArray::number(i));
        moves.push_back(move(QStringLiteral("%1.jpg").arg(i, 4, 10, QLatin1Char('0')), QStringLiteral("%1.jpg").arg(i + 1, 4, 10, QLatin1Char('0'))));
    }
    const auto outcomes = mover.apply(moves);
    EXPECT_EQ(std::count_if(outcomes.begin(), outcomes.end(), [](const auto &o) { return o.status == S::Renamed; }), 1000);
    EXPECT_EQ(read("0002.jpg"), QByteArray("1"));
    EXPECT_EQ(read("1001.jpg"), QByteArray("1000"));
    EXPECT_EQ(read("0001.jpg"), QByteArray("<missing>"));
}

TEST_F(SafeMoves, ConflictsAreFoundBeforeAnythingMoves)
{
    make("a", "A");
    make("b", "B");
    make("taken", "T");
    make("c", "C");
    const auto outcomes = mover.apply({move("a", "same"), move("b", "same"), move("c", "taken"), move("taken", "taken"),
                                       move("a", ""), move("a", ".."), move("a", QString(256, u'n'))});
    EXPECT_EQ(statuses(outcomes), QList<S>({S::Conflict, S::Conflict, S::Conflict, S::Unchanged, S::Conflict, S::Conflict, S::Conflict}));
    EXPECT_TRUE(outcomes[2].reason.contains(QStringLiteral("already there")));
    EXPECT_EQ(listing(), QStringList({"a", "b", "c", "taken"}));
    // A name taken by a file that moves away in the same batch is free.
    EXPECT_EQ(statuses(mover.apply({move("c", "taken"), move("taken", "t2")})), QList<S>({S::Renamed, S::Renamed}));
    EXPECT_EQ(read("taken"), QByteArray("C"));
}

// A folder with many moves is read once instead of each name being looked
// up; the answers must be the same, and a batch reports its progress.
TEST_F(SafeMoves, ManyMovesInOneFolderFindTheSameConflicts)
{
    std::vector<SafeMover::Move> moves;
    for (int i = 0; i < 100; ++i) {
        make(QStringLiteral("f%1").arg(i), QByteArray::number(i));
        moves.push_back(move(QStringLiteral("f%1").arg(i), QStringLiteral("g%1").arg(i)));
    }
    make("g7", "someone else's");
    moves.push_back(move("missing", "g100"));
    moves.push_back(move("f8", "h8")); // a second move of one file
    std::vector<size_t> reported;
    mover.progress = [&](size_t done, size_t total) {
        EXPECT_EQ(total, 99u);
        reported.push_back(done);
    };
    const auto outcomes = mover.apply(moves);
    EXPECT_EQ(outcomes[7].status, S::Conflict);
    EXPECT_EQ(outcomes[100].status, S::Failed);
    EXPECT_EQ(outcomes[100].reason, "the file is no longer there");
    EXPECT_EQ(outcomes[8].status, S::Renamed);
    EXPECT_EQ(outcomes[101].status, S::Conflict);
    EXPECT_EQ(outcomes[101].reason, "an earlier row moves the same file");
    EXPECT_EQ(read("g7"), QByteArray("someone else's"));
    EXPECT_EQ(read("g99"), QByteArray("99"));
    ASSERT_EQ(reported.size(), 99u);
    EXPECT_EQ(reported.back(), 99u);
}

TEST_F(SafeMoves, ATargetThatAppearsAfterPlanningIsNotOverwritten)
{
    make("a", "A");
    make("b", "B");
    const auto planned = SafeMover::plan({move("a", "late")});
    EXPECT_EQ(planned[0].status, S::Renamed);
    make("late", "someone else's");
    const auto outcomes = mover.apply({move("a", "late"), move("b", "c")});
    EXPECT_EQ(outcomes[0].status, S::Conflict);
    EXPECT_EQ(read("late"), QByteArray("someone else's"));
    EXPECT_EQ(read("a"), QByteArray("A"));
    EXPECT_EQ(read("c"), QByteArray("B")) << "the rest of the batch goes on";
}

TEST_F(SafeMoves, AFailedMoveLeavesItsFileAndTheRestGoesOn)
{
    make("locked/a", "A");
    make("b", "B");
    make("d", "D");
    chmod(QFile::encodeName(path("locked")).constData(), 0555);
    // Root may write into a read-only folder; a missing folder stops anyone.
    const bool root = geteuid() == 0;
    const auto outcomes = mover.apply({move("locked/a", "locked/z"), move("d", "nowhere/z"), move("b", "c")});
    chmod(QFile::encodeName(path("locked")).constData(), 0755);
    if (!root) {
        EXPECT_EQ(outcomes[0].status, S::Failed);
        EXPECT_EQ(read("locked/a"), QByteArray("A"));
    }
    EXPECT_EQ(outcomes[1].status, S::Failed);
    EXPECT_EQ(read("d"), QByteArray("D"));
    EXPECT_EQ(outcomes[2].status, S::Renamed);
    EXPECT_EQ(read("c"), QByteArray("B"));
}

TEST_F(SafeMoves, ChildrenMoveBeforeTheirFolder)
{
    make("Album/one.jpg", "1");
    const auto outcomes = mover.apply({move("Album", "Trip"), move("Album/one.jpg", "Album/first.jpg")});
    EXPECT_EQ(statuses(outcomes), QList<S>({S::Renamed, S::Renamed}));
    EXPECT_EQ(read("Trip/first.jpg"), QByteArray("1"));
}

TEST_F(SafeMoves, AKilledBatchIsFinishedOrRolledBackWithEveryFileIntact)
{
    for (int k = 0; k <= 7; ++k) {
        for (bool finish : {true, false}) {
            QDir(dir.filePath("files")).removeRecursively();
            make("a", "A");
            make("b", "B");
            make("c", "C");
            make("d", "D");
            // A 3-cycle (with a step aside) and one plain rename: 5 steps.
            SafeMover dying(dir.filePath(QStringLiteral("journal")));
            dying.stopAfterSteps = k;
            dying.apply({move("a", "b"), move("b", "c"), move("c", "a"), move("d", "e")});
            SafeMover next(dir.filePath(QStringLiteral("journal")));
            if (k < 5) {
                ASSERT_TRUE(next.hasUnfinishedBatch()) << k;
                if (finish)
                    next.finishUnfinished();
                else
                    next.rollBackUnfinished();
            }
            const QStringList after = listing();
            if (finish || k >= 5) {
                EXPECT_EQ(after, QStringList({"a", "b", "c", "e"})) << k;
                EXPECT_EQ(read("b"), QByteArray("A")) << k;
                EXPECT_EQ(read("a"), QByteArray("C")) << k;
                next.undoLast();
            }
            EXPECT_EQ(listing(), QStringList({"a", "b", "c", "d"})) << k << finish;
            EXPECT_EQ(read("a") + read("b") + read("c") + read("d"), QByteArray("ABCD")) << k << finish;
            EXPECT_FALSE(next.hasUnfinishedBatch());
        }
    }
}

TEST_F(SafeMoves, NamesThatAreNotUtf8GoThroughTheWholePath)
{
    QDir().mkpath(dir.filePath("files"));
    const QByteArray raw = PathCodec::encode(dir.filePath("files")) + "/raw\xff";
    FILE *file = fopen(raw.constData(), "w");
    ASSERT_NE(file, nullptr);
    fputs("R", file);
    fclose(file);
    const QString from = PathCodec::decode(raw);
    const QString to = PathCodec::decode(PathCodec::encode(dir.filePath("files")) + "/new\xfe");
    EXPECT_EQ(mover.apply({{from, to}})[0].status, S::Renamed);
    mover.undoLast();
    EXPECT_EQ(access(raw.constData(), F_OK), 0) << "undone through the journal, byte for byte";
}

} // namespace
