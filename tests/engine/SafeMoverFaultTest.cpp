// The safe mover stopped dead at every point of a batch (a child process
// kills itself there with SIGKILL), then finished, rolled back or undone;
// and every move made to fail in turn. After each, every file's contents
// must be present exactly once, under its old or its new name, and the
// batch must end exactly where it was asked to go.

#include "BatchObserver.h"
#include "FileTree.h"
#include "SafeMover.h"
#include "TestPrinting.h"

#include "TemporaryFolder.h"
#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace {

using Files = QMap<QString, QByteArray>;

struct Pattern {
    const char *name;
    QStringList files;
    std::vector<std::pair<QString, QString>> renames; // relative path -> new name in the same folder
};

void PrintTo(const Pattern &pattern, std::ostream *os)
{
    *os << pattern.name;
}

QString numbered(const char *stem, int n)
{
    return QStringLiteral("%1%2").arg(QLatin1String(stem)).arg(n, 2, 10, QLatin1Char('0'));
}

Pattern chains()
{
    Pattern p{"Chains", {}, {}};
    for (int c = 0; c < 10; ++c)
        for (int i = 0; i < 5; ++i) {
            p.files.append(QStringLiteral("c%1_%2").arg(c).arg(i));
            p.renames.push_back({QStringLiteral("c%1_%2").arg(c).arg(i), QStringLiteral("c%1_%2").arg(c).arg(i + 1)});
        }
    return p;
}

Pattern swaps()
{
    Pattern p{"Swaps", {}, {}};
    for (int i = 0; i < 25; ++i) {
        p.files += {numbered("a", i), numbered("b", i)};
        p.renames.push_back({numbered("a", i), numbered("b", i)});
        p.renames.push_back({numbered("b", i), numbered("a", i)});
    }
    return p;
}

Pattern cycles()
{
    Pattern p{"ThreeCycles", {"p0", "p1"}, {{"p0", "q0"}, {"p1", "q1"}}};
    for (int i = 0; i < 16; ++i)
        for (int k = 0; k < 3; ++k) {
            p.files.append(QStringLiteral("t%1_%2").arg(i).arg(k));
            p.renames.push_back({QStringLiteral("t%1_%2").arg(i).arg(k), QStringLiteral("t%1_%2").arg(i).arg((k + 1) % 3)});
        }
    return p;
}

Pattern shiftByOne()
{
    Pattern p{"ShiftByOne", {}, {}};
    for (int i = 0; i < 50; ++i) {
        p.files.append(numbered("f", i));
        p.renames.push_back({numbered("f", i), numbered("f", i + 1)});
    }
    return p;
}

// Five folders take each other's names in a cycle while the files inside
// each swap names in pairs.
Pattern foldersAndContents()
{
    Pattern p{"FoldersAndContents", {}, {}};
    const QStringList folders = {"A", "B", "C", "D", "E"};
    for (qsizetype f = 0; f < folders.size(); ++f) {
        for (int i = 0; i < 8; ++i)
            p.files.append(folders[f] + u'/' + numbered("x", i));
        for (int i = 0; i < 8; i += 2) {
            p.renames.push_back({folders[f] + u'/' + numbered("x", i), numbered("x", i + 1)});
            p.renames.push_back({folders[f] + u'/' + numbered("x", i + 1), numbered("x", i)});
        }
        p.renames.push_back({folders[f], folders[(f + 1) % folders.size()]});
    }
    return p;
}

// Where each file ends when every rename is made: each part of its path
// takes its new name.
Files renamedLayout(const Pattern &pattern)
{
    QHash<QString, QString> newName(pattern.renames.begin(), pattern.renames.end());
    Files layout;
    for (const QString &file : pattern.files) {
        const QStringList parts = file.split(u'/');
        QStringList renamed;
        for (qsizetype i = 0; i < parts.size(); ++i)
            renamed.append(newName.value(parts.mid(0, i + 1).join(u'/'), parts[i]));
        layout.insert(renamed.join(u'/'), PathCodec::encode(file));
    }
    return layout;
}

Files firstLayout(const Pattern &pattern)
{
    Files layout;
    for (const QString &file : pattern.files)
        layout.insert(file, PathCodec::encode(file));
    return layout;
}

// Every content once, wherever it is; "" when whole.
QString wholeness(const Files &found, const Pattern &pattern)
{
    QHash<QByteArray, int> seen;
    for (const QByteArray &contents : found)
        seen[contents] += 1;
    for (const QString &file : pattern.files)
        if (seen.value(PathCodec::encode(file)) != 1)
            return QStringLiteral("the contents of %1 are there %2 times").arg(file).arg(seen.value(PathCodec::encode(file)));
    if (found.size() != pattern.files.size())
        return QStringLiteral("%1 files instead of %2").arg(found.size()).arg(pattern.files.size());
    return {};
}

struct Event {
    BatchPoint point;
    size_t index;
};

// Notes every point a batch passes.
class Recorder : public BatchObserver {
public:
    int at(BatchPoint point, size_t index, const QString &) override
    {
        events.push_back({point, index});
        return 0;
    }
    std::vector<Event> events;
};

// Ends the process at the n-th point it sees, as a kill -9 would.
class Killer : public BatchObserver {
public:
    explicit Killer(size_t n) : m_left(n) {}
    int at(BatchPoint, size_t, const QString &) override
    {
        if (m_left-- == 0)
            raise(SIGKILL);
        return 0;
    }

private:
    size_t m_left;
};

// Fails the call made at one point with an errno value.
class Failer : public BatchObserver {
public:
    Failer(BatchPoint point, size_t index, int error) : m_point(point), m_index(index), m_error(error) {}
    int at(BatchPoint point, size_t index, const QString &) override { return point == m_point && index == m_index ? m_error : 0; }

private:
    BatchPoint m_point;
    size_t m_index;
    int m_error;
};

enum class Step { Apply, Undo, Finish, RollBack };

class Faults : public testing::TestWithParam<Pattern> {
protected:
    // Files and journals on a memory file system where there is one:
    // thousands of batches, each flushed to disk, run here.
    Faults() : m_dir(QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm/nomen-faults-XXXXXX") : QString()) {}

    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    void reset()
    {
        tree.clear();
        QDir(m_dir.path()).removeRecursively();
        ASSERT_TRUE(QDir().mkpath(m_dir.path()));
        ASSERT_TRUE(tree.makeAll(GetParam().files));
    }

    std::vector<SafeMover::Move> moves() const
    {
        std::vector<SafeMover::Move> list;
        for (const auto &[from, to] : GetParam().renames)
            list.push_back({tree.path(from), tree.path(from.left(from.lastIndexOf(u'/') + 1) + to)});
        return list;
    }

    SafeMover::Report run(Step step, BatchObserver *observer = nullptr)
    {
        SafeMover mover(journals());
        mover.observer = observer;
        switch (step) {
        case Step::Apply:
            return mover.apply(moves());
        case Step::Undo:
            return mover.undoLast();
        case Step::Finish:
            return mover.finishPending();
        case Step::RollBack:
            return mover.rollBackPending();
        }
        return {};
    }

    // The points the step passes, from a run on a fresh copy of the state
    // `prepare` leaves.
    std::vector<Event> pointsOf(Step step, const std::function<void()> &prepare)
    {
        reset();
        prepare();
        Recorder recorder;
        run(step, &recorder);
        return recorder.events;
    }

    // The step in a child process that is killed at its n-th point.
    void killedDuring(Step step, size_t n)
    {
        const pid_t child = fork();
        if (child == 0) {
            Killer killer(n);
            run(step, &killer);
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "killed at point " << n;
    }

    bool pending() const { return SafeMover(journals()).pending().has_value(); }
    QString journals() const { return m_dir.path() + QStringLiteral("/journal"); }

    // Kills `step` at each of its points, after `prepare`; `check` judges
    // what follows.
    void atEveryPoint(Step step, const std::function<void()> &prepare, const std::function<void(const QString &where)> &check)
    {
        const std::vector<Event> events = pointsOf(step, prepare);
        ASSERT_GT(events.size(), 3u);
        for (size_t n = 0; n < events.size(); ++n) {
            // Before a move is the same instant as after the move before.
            if (events[n].point == BatchPoint::Move && events[n].index > 0)
                continue;
            reset();
            prepare();
            killedDuring(step, n);
            const QString where = QStringLiteral("%1 killed at point %2 (%3 #%4)")
                                      .arg(GetParam().name).arg(n).arg(int(events[n].point)).arg(events[n].index);
            const QString whole = wholeness(tree.files(), GetParam());
            ASSERT_TRUE(whole.isEmpty()) << where.toStdString() << ": " << whole.toStdString();
            check(where);
            if (HasFatalFailure())
                return;
        }
    }

    TemporaryFolder m_dir;
    FileTree tree{m_dir.path() + QStringLiteral("/files")};
};

const auto nothing = [] {};

TEST_P(Faults, AKilledBatchIsFinishedWithEveryFileAtItsNewNameThenUndone)
{
    const Files before = firstLayout(GetParam()), after = renamedLayout(GetParam());
    atEveryPoint(Step::Apply, nothing, [&](const QString &where) {
        if (!pending()) {
            // Stopped before its journal was in place: nothing moved.
            ASSERT_EQ(tree.files(), before) << where.toStdString();
            return;
        }
        // Nothing else happens until the batch is dealt with.
        EXPECT_EQ(run(Step::Apply).refusal, SafeMover::Refusal::Pending) << where.toStdString();
        EXPECT_EQ(run(Step::Undo).refusal, SafeMover::Refusal::Pending) << where.toStdString();
        ASSERT_EQ(wholeness(tree.files(), GetParam()), "") << where.toStdString();
        run(Step::Finish);
        ASSERT_EQ(tree.files(), after) << where.toStdString();
        EXPECT_FALSE(pending()) << where.toStdString();
        run(Step::Undo);
        ASSERT_EQ(tree.files(), before) << where.toStdString();
    });
}

TEST_P(Faults, AKilledBatchIsRolledBackWithEveryFileAtItsOldName)
{
    const Files before = firstLayout(GetParam());
    atEveryPoint(Step::Apply, nothing, [&](const QString &where) {
        if (!pending())
            return; // the other test judges these
        run(Step::RollBack);
        ASSERT_EQ(tree.files(), before) << where.toStdString();
        EXPECT_FALSE(pending()) << where.toStdString();
        EXPECT_TRUE(run(Step::Undo).outcomes.empty()) << "a batch rolled back is not in the history";
    });
}

TEST_P(Faults, AKilledUndoIsFinishedOrRolledBackNeverDoneTwice)
{
    const Files before = firstLayout(GetParam()), after = renamedLayout(GetParam());
    for (const Step next : {Step::Finish, Step::RollBack})
        atEveryPoint(Step::Undo, [&] { run(Step::Apply); }, [&](const QString &where) {
            if (!pending()) {
                // Stopped before the undo's journal was in place, or after
                // it left while its batch was still in the history: the next
                // undo does it, or finds nothing left to do.
                if (tree.files() != after) {
                    ASSERT_EQ(tree.files(), before) << where.toStdString();
                }
                run(Step::Undo);
                ASSERT_EQ(tree.files(), before) << where.toStdString();
                EXPECT_TRUE(run(Step::Undo).outcomes.empty()) << where.toStdString() << ": undone twice";
                return;
            }
            EXPECT_EQ(run(Step::Undo).refusal, SafeMover::Refusal::Pending) << where.toStdString();
            run(next);
            EXPECT_FALSE(pending());
            ASSERT_EQ(tree.files(), next == Step::Finish ? before : after) << where.toStdString();
            // Whatever is left in the history puts the first names back.
            run(Step::Undo);
            ASSERT_EQ(tree.files(), before) << where.toStdString();
            EXPECT_TRUE(run(Step::Undo).outcomes.empty()) << where.toStdString() << ": undone twice";
            ASSERT_EQ(tree.files(), before) << where.toStdString();
        });
}

TEST_P(Faults, AKilledRollBackOrFinishCarriesOnWhereItStopped)
{
    const Files before = firstLayout(GetParam()), after = renamedLayout(GetParam());
    // A batch stopped half way, then the recovery stopped at each point.
    const size_t middle = pointsOf(Step::Apply, nothing).size() / 2;
    const auto halfWay = [&] { killedDuring(Step::Apply, middle); };
    for (const Step recovery : {Step::RollBack, Step::Finish})
        atEveryPoint(recovery, halfWay, [&](const QString &where) {
            ASSERT_TRUE(pending()) << where.toStdString();
            run(recovery);
            ASSERT_EQ(tree.files(), recovery == Step::RollBack ? before : after) << where.toStdString();
            EXPECT_FALSE(pending());
        });
}

TEST_P(Faults, EachMoveFailingInTurnLosesNothingAndUndoPutsAllBack)
{
    const Files before = firstLayout(GetParam());
    const std::vector<Event> events = pointsOf(Step::Apply, nothing);
    for (const Event &event : events) {
        if (event.point != BatchPoint::Move)
            continue;
        reset();
        Failer failer(BatchPoint::Move, event.index, EIO);
        const SafeMover::Report report = run(Step::Apply, &failer);
        const QString where = QStringLiteral("%1, move %2 failing").arg(GetParam().name).arg(event.index);
        ASSERT_EQ(wholeness(tree.files(), GetParam()), "") << where.toStdString();
        for (const auto &outcome : report.outcomes)
            ASSERT_TRUE(outcome.status == SafeMover::Status::Renamed || outcome.reason.contains(u'"')) << outcome.reason.toStdString();
        EXPECT_FALSE(pending()) << where.toStdString();
        for (const QString &name : tree.files().keys())
            ASSERT_FALSE(name.contains(QStringLiteral(".nomen-moving"))) << where.toStdString();
        run(Step::Undo);
        ASSERT_EQ(tree.files(), before) << where.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Batches, Faults, testing::Values(chains(), swaps(), cycles(), shiftByOne(), foldersAndContents()),
                         [](const testing::TestParamInfo<Pattern> &info) { return std::string(info.param.name); });

} // namespace
