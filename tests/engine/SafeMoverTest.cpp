#include "BatchObserver.h"
#include "FileMoves.h"
#include "FileTree.h"
#include "RenameEngine.h"
#include "SafeMover.h"
#include "TestPrinting.h"

#include <QDir>
#include <algorithm>
#include "TemporaryFolder.h"
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using S = SafeMover::Status;
using Files = QMap<QString, QByteArray>;

class SafeMoves : public testing::Test {
protected:
    SafeMover::Move move(const QString &from, const QString &to) const { return {tree.path(from), tree.path(to)}; }
    std::vector<SafeMover::Move> moves(const std::vector<std::pair<QString, QString>> &pairs) const
    {
        std::vector<SafeMover::Move> list;
        for (const auto &[from, to] : pairs)
            list.push_back(move(from, to));
        return list;
    }
    static QList<S> statuses(const std::vector<SafeMover::Outcome> &outcomes)
    {
        QList<S> list;
        for (const auto &outcome : outcomes)
            list.append(outcome.status);
        return list;
    }

    TemporaryFolder dir;
    FileTree tree{dir.filePath(QStringLiteral("files"))};
    QString journals = dir.filePath(QStringLiteral("journal"));
    SafeMover mover{journals};
};

// Answers an errno value at chosen points.
class Failing : public BatchObserver {
public:
    Failing(BatchPoint point, int error) : m_point(point), m_error(error) {}
    int at(BatchPoint point, size_t, const QString &) override { return point == m_point ? m_error : 0; }

private:
    BatchPoint m_point;
    int m_error;
};

TEST_F(SafeMoves, EveryRowIsCheckedBeforeAnythingMoves)
{
    ASSERT_TRUE(tree.makeAll({"a", "b", "c", "d", "taken", "linked", "sub/z"}));
    ASSERT_EQ(link(PathCodec::encode(tree.path("linked")).constData(), PathCodec::encode(tree.path("hardlink")).constData()), 0);
    const Files before = tree.files();
    struct Row {
        SafeMover::Move move;
        S status;
        QString reason;
    };
    const Row rows[] = {
        {move("a", "same"), S::Conflict, "another row takes the same new name \"same\""},
        {move("b", "same"), S::Conflict, "another row takes the same new name \"same\""},
        // "c" is refused below, so the name it would free stays taken.
        {move("d", "c"), S::Conflict, "a file named \"c\" is already there"},
        {move("c", "taken"), S::Conflict, "a file named \"taken\" is already there"},
        {move("taken", "taken"), S::Unchanged, ""},
        {move("a", ""), S::Conflict, "the new name is empty"},
        {move("a", ".."), S::Conflict, "\"..\" cannot be a name"},
        {move("a", "sub/b"), S::Conflict, "the new name \"sub/b\" holds \"/\""},
        {move("a", "../up_a"), S::Conflict, "the new name \"../up_a\" holds \"/\""},
        {{tree.path("a"), dir.filePath("elsewhere")}, S::Conflict, QStringLiteral("\"%1\" is not in the folder of \"%2\"").arg(dir.filePath("elsewhere"), tree.path("a"))},
        {move("a", QStringLiteral("n") + QChar(0)), S::Conflict, "the new name holds a NUL character"},
        {move("a", QString(256, u'n')), S::Conflict, "the new name is longer than 255 bytes"},
        {move("missing", "m2"), S::Failed, QStringLiteral("\"%1\" is no longer there").arg(tree.path("missing"))},
        {move("nowhere/m", "nowhere/m3"), S::Failed, QStringLiteral("no such folder \"%1\"").arg(tree.path("nowhere"))},
        {move("linked", "l2"), S::Renamed, ""},
        {move("hardlink", "l3"), S::Conflict, "\"hardlink\" is another name of the file \"linked\", which an earlier row moves"},
    };
    std::vector<SafeMover::Move> list;
    for (const Row &row : rows)
        list.push_back(row.move);
    const std::vector<SafeMover::Outcome> planned = SafeMover::plan(list);
    for (size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(planned[i].status, rows[i].status) << i;
        EXPECT_EQ(planned[i].reason, rows[i].reason) << i;
    }
    EXPECT_EQ(tree.files(), before) << "a plan moves nothing";
}

TEST_F(SafeMoves, NamesThatMaySurpriseAreWarnedAboutAndStillGiven)
{
    ASSERT_TRUE(tree.makeAll({"a", "b", "c", ".d", "e", "f\tg"}));
    const auto report =
        mover.apply(moves({{"a", ".a"}, {"b", " b"}, {"c", "c "}, {".d", ".e"}, {"e", "e\nx"}, {"f\tg", "f\tgh"}}));
    EXPECT_EQ(statuses(report.outcomes), QList<S>(6, S::Renamed));
    EXPECT_EQ(report.outcomes[0].warning, "the new name starts with \".\": the item will be hidden");
    EXPECT_EQ(report.outcomes[1].warning, "the new name starts with a space");
    EXPECT_EQ(report.outcomes[2].warning, "the new name ends with a space");
    EXPECT_EQ(report.outcomes[3].warning, "") << "it was hidden already";
    EXPECT_EQ(report.outcomes[4].warning, "the new name holds a control character (a tab, a line break or the like)");
    EXPECT_EQ(report.outcomes[5].warning, "") << "it held one already";
}

TEST_F(SafeMoves, RelativePathsAreResolvedSoUndoWorksFromAnywhere)
{
    ASSERT_TRUE(tree.makeAll({"a"}));
    ASSERT_TRUE(QDir().mkpath(dir.filePath("elsewhere")));
    ASSERT_EQ(symlink(PathCodec::encode(tree.root()).constData(), PathCodec::encode(dir.filePath("elsewhere/link")).constData()), 0);
    const QString here = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir.filePath("elsewhere")));
    const auto report = mover.apply(std::vector<SafeMover::Move>{{"link/a", "link/b"}});
    ASSERT_TRUE(QDir::setCurrent(here));
    EXPECT_EQ(statuses(report.outcomes), QList<S>({S::Renamed}));
    EXPECT_EQ(tree.files(), Files({{"b", "a"}}));
    EXPECT_EQ(statuses(mover.undoLast().outcomes), QList<S>({S::Renamed}));
    EXPECT_EQ(tree.files(), Files({{"a", "a"}}));
}

// A folder with many moves is read once instead of each name being looked
// up; the answers must be the same, and a batch reports its progress.
TEST_F(SafeMoves, ManyMovesInOneFolderFindTheSameConflicts)
{
    std::vector<SafeMover::Move> list;
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(tree.make(QStringLiteral("f%1").arg(i), QByteArray::number(i)));
        list.push_back(move(QStringLiteral("f%1").arg(i), QStringLiteral("g%1").arg(i)));
    }
    ASSERT_TRUE(tree.make("g7", "someone else's"));
    list.push_back(move("f8", "h8")); // a second move of one file
    std::vector<size_t> reported;
    mover.progress = [&](size_t done, size_t total) {
        EXPECT_EQ(total, 99u);
        reported.push_back(done);
    };
    const auto outcomes = mover.apply(list).outcomes;
    EXPECT_EQ(outcomes[7].status, S::Conflict);
    EXPECT_EQ(outcomes[8].status, S::Renamed);
    EXPECT_EQ(outcomes[100].reason, "an earlier row moves the same file");
    EXPECT_EQ(tree.read("g7"), "someone else's");
    EXPECT_EQ(tree.read("g99"), "99");
    ASSERT_EQ(reported.size(), 99u);
    EXPECT_EQ(reported.back(), 99u);
}

// A table planned with the names its listing saw finds what a plan that
// reads the folder itself finds, names that are not UTF-8 included; a name
// that appears after the listing is not seen, and the move still refuses
// to replace it.
TEST_F(SafeMoves, APlanFromTheListingsNamesFindsWhatTheFolderHolds)
{
    const QString latin = PathCodec::decode("\xe9"); // a byte that is not UTF-8
    for (int i = 0; i < 100; ++i)
        ASSERT_TRUE(tree.make(QStringLiteral("f%1").arg(i), QByteArray::number(i)));
    ASSERT_TRUE(tree.makeAll({"f" + latin, "g" + latin, "g7"}));
    RenameEngine engine;
    ListingRequest request;
    request.paths = {tree.root()};
    request.root = tree.root();
    request.keepsNames = true;
    const Listing listing = engine.listing().list(request);
    ASSERT_EQ(listing.seen.size(), 1u);
    QStringList newNames;
    for (const ItemRecord &row : listing.items)
        newNames.append(row.name.startsWith(u'f') ? u'g' + row.name.mid(1) : row.name);
    const auto reasons = [](const std::vector<SafeMover::Outcome> &outcomes) {
        QStringList list;
        for (const auto &outcome : outcomes)
            list.append(outcome.reason);
        return list;
    };
    const QStringList read = reasons(SafeMover::plan(listing.items, newNames));
    EXPECT_EQ(reasons(SafeMover::plan(listing.items, newNames, &listing.seen)), read);
    EXPECT_EQ(read.size(), 103);
    EXPECT_EQ(read.count(QStringLiteral("a file named \"g7\" is already there")), 1);
    EXPECT_EQ(read.count(QStringLiteral("a file named \"g%1\" is already there").arg(latin)), 1);

    ASSERT_TRUE(tree.make("g5", "a newcomer"));
    const auto outcomes = mover.apply(listing.items, newNames, &listing.seen).outcomes;
    const auto g5 = std::find_if(outcomes.cbegin(), outcomes.cend(), [&](const SafeMover::Outcome &outcome) {
        return listing.items[size_t(outcome.row)].name == QLatin1String("f5");
    });
    ASSERT_NE(g5, outcomes.cend());
    EXPECT_EQ(g5->status, S::Failed) << "planned as free from what the listing saw, refused by the move";
    EXPECT_EQ(tree.read("g5"), "a newcomer");
    EXPECT_EQ(tree.read("f5"), "5");
    EXPECT_EQ(tree.read("g6"), "6");
}

TEST_F(SafeMoves, AFailedMoveLeavesItsFileNamesItAndTheRestGoesOn)
{
    ASSERT_TRUE(tree.makeAll({"a", "b", "x", "y"}));
    // The swap's first move fails; a name appears after planning.
    class Interference : public BatchObserver {
    public:
        explicit Interference(FileTree &tree) : m_tree(tree) {}
        int at(BatchPoint point, size_t, const QString &path) override
        {
            if (point == BatchPoint::Move && path == m_tree.path("x"))
                return EACCES;
            if (point == BatchPoint::Move && path == m_tree.path("a"))
                m_tree.make("c", "appeared");
            return 0;
        }
        FileTree &m_tree;
    } interference(tree);
    mover.observer = &interference;
    const auto outcomes = mover.apply(moves({{"x", "y"}, {"y", "x"}, {"a", "c"}, {"b", "d"}})).outcomes;
    EXPECT_EQ(statuses(outcomes), QList<S>({S::Failed, S::Failed, S::Failed, S::Renamed}));
    EXPECT_TRUE(outcomes[0].reason.startsWith(QStringLiteral("\"%1\" could not be moved aside to \".nomen-moving-").arg(tree.path("x"))))
        << outcomes[0].reason.toStdString();
    EXPECT_TRUE(outcomes[0].reason.endsWith("Permission denied")) << outcomes[0].reason.toStdString();
    EXPECT_EQ(outcomes[1].reason,
              QStringLiteral("\"%1\" could not be renamed to \"x\": the file with that name could not be moved out of the way").arg(tree.path("y")));
    EXPECT_EQ(outcomes[2].reason, QStringLiteral("\"%1\" could not be renamed to \"c\": an item with that name is already there").arg(tree.path("a")));
    EXPECT_EQ(tree.files(), Files({{"a", "a"}, {"c", "appeared"}, {"d", "b"}, {"x", "x"}, {"y", "y"}}));
}

TEST_F(SafeMoves, FoldersMoveAfterTheirContentsAndComeBackWithThem)
{
    ASSERT_TRUE(tree.makeAll({"Album/one.jpg", "Album/Inner/two.jpg", "Other/three.jpg"}));
    const Files before = tree.files();
    // Two folders swap names while the files inside them are renamed.
    const auto report = mover.apply(moves({{"Album", "Other"}, {"Other", "Album"}, {"Album/one.jpg", "Album/first.jpg"},
                                           {"Album/Inner", "Album/Deep"}, {"Album/Inner/two.jpg", "Album/Inner/second.jpg"},
                                           {"Other/three.jpg", "Other/third.jpg"}}));
    EXPECT_EQ(statuses(report.outcomes), QList<S>(6, S::Renamed));
    EXPECT_EQ(tree.files(), Files({{"Other/first.jpg", "Album/one.jpg"}, {"Other/Deep/second.jpg", "Album/Inner/two.jpg"},
                                   {"Album/third.jpg", "Other/three.jpg"}}));
    EXPECT_EQ(statuses(mover.undoLast().outcomes), QList<S>(6, S::Renamed));
    EXPECT_EQ(tree.files(), before);
}

TEST_F(SafeMoves, NamesThatAreNotUtf8GoThroughTheWholePath)
{
    const QString raw = PathCodec::decode("raw\xff");
    const QString renamed = PathCodec::decode("new\xfe");
    ASSERT_TRUE(tree.make(raw, "R"));
    EXPECT_EQ(mover.apply({move(raw, renamed)}).outcomes[0].status, S::Renamed);
    EXPECT_EQ(tree.files().keys(), QStringList({renamed}));
    mover.undoLast();
    EXPECT_EQ(unlink(PathCodec::encode(tree.path(raw)).constData()), 0) << "undone through the journal, byte for byte";
}

// A rule's new name may keep the bytes of the name that are not UTF-8, but
// may not make half a character nor bytes the name never had.
TEST_F(SafeMoves, ARuleThatWouldSplitACharacterIsAConflictAndWritesNothing)
{
    const QString camera = QStringLiteral("📷7");
    const QString raw = PathCodec::decode("raw\xff");
    ASSERT_TRUE(tree.make(camera, "C"));
    ASSERT_TRUE(tree.make(raw, "R"));
    std::vector<ItemRecord> rows(2);
    rows[0].name = camera;
    rows[1].name = raw;
    for (ItemRecord &row : rows)
        row.location = tree.path(QString());
    const QStringList newNames = {camera.mid(1), PathCodec::decode("X\xff")};
    const SafeMover::Report report = mover.apply(rows, newNames);
    ASSERT_EQ(statuses(report.outcomes), QList<S>({S::Conflict, S::Renamed}));
    EXPECT_TRUE(report.outcomes[0].reason.startsWith(QStringLiteral("the new name would split a character")));
    EXPECT_EQ(tree.files(), Files({{camera, "C"}, {PathCodec::decode("X\xff"), "R"}}));
}

TEST_F(SafeMoves, UndoGoesBackThroughTheLastTwentyBatches)
{
    ASSERT_TRUE(tree.makeAll({"n0"}));
    for (int i = 0; i < 22; ++i)
        ASSERT_EQ(mover.apply({move(QStringLiteral("n%1").arg(i), QStringLiteral("n%1").arg(i + 1))}).outcomes[0].status, S::Renamed);
    // A batch that moves nothing leaves the history as it is.
    EXPECT_EQ(mover.apply({move("missing", "other")}).outcomes[0].status, S::Failed);
    EXPECT_EQ(mover.store().history().size(), JournalStore::KeptBatches);
    for (int i = 22; i > 2; --i) {
        ASSERT_EQ(statuses(mover.undoLast().outcomes), QList<S>({S::Renamed})) << i;
        ASSERT_EQ(tree.files(), Files({{QStringLiteral("n%1").arg(i - 1), "n0"}})) << i;
    }
    EXPECT_TRUE(mover.undoLast().outcomes.empty()) << "older batches are forgotten";
}

TEST_F(SafeMoves, UndoPutsBackOnlyTheSameFilesAndKeepsWhatItCouldNotDo)
{
    ASSERT_TRUE(tree.makeAll({"a", "b", "c"}));
    mover.apply(moves({{"a", "A"}, {"b", "B"}, {"c", "C"}}));
    // "A" is replaced by another file; "b" is taken by a newcomer.
    ASSERT_EQ(unlink(PathCodec::encode(tree.path("A")).constData()), 0);
    ASSERT_TRUE(tree.make("A", "impostor"));
    ASSERT_TRUE(tree.make("b", "newcomer"));
    const auto first = mover.undoLast().outcomes;
    EXPECT_EQ(statuses(first), QList<S>({S::Conflict, S::Renamed, S::Failed}));
    EXPECT_EQ(first[0].reason, "a file named \"b\" is already there");
    EXPECT_EQ(first[2].reason, QStringLiteral("\"%1\" is no longer the file that was renamed from \"%2\"; it is left alone")
                                   .arg(tree.path("A"), tree.path("a")));
    EXPECT_EQ(tree.files(), Files({{"A", "impostor"}, {"B", "b"}, {"b", "newcomer"}, {"c", "c"}}));
    // Once "b" is free the same undo can be tried again; then it is done.
    ASSERT_EQ(unlink(PathCodec::encode(tree.path("b")).constData()), 0);
    EXPECT_EQ(statuses(mover.undoLast().outcomes), QList<S>({S::Renamed, S::Failed}));
    EXPECT_EQ(tree.files(), Files({{"A", "impostor"}, {"b", "b"}, {"c", "c"}}));
    EXPECT_TRUE(mover.store().history().isEmpty());
}

TEST_F(SafeMoves, OneRunAtATime)
{
    ASSERT_TRUE(tree.makeAll({"a"}));
    SafeMover other(journals);
    other.lockWaitMs = 100;
    ASSERT_TRUE(mover.hold().ok());
    for (const SafeMover::Report &report : {other.apply({move("a", "b")}), other.undoLast(), other.finishPending()}) {
        EXPECT_EQ(report.refusal, SafeMover::Refusal::Busy);
        EXPECT_TRUE(report.refusalText.startsWith("another Nomen run is renaming files")) << report.refusalText.toStdString();
    }
    EXPECT_EQ(mover.apply({move("a", "b")}).outcomes[0].status, S::Renamed) << "the holder may go on";
    mover.release();
    EXPECT_EQ(other.apply({move("b", "c")}).outcomes[0].status, S::Renamed);
}

TEST_F(SafeMoves, AJournalThatCannotBeWrittenMovesNothing)
{
    for (const BatchPoint point : {BatchPoint::WriteJournal, BatchPoint::FlushJournal, BatchPoint::PlaceJournal}) {
        ASSERT_TRUE(tree.makeAll({"a", "b"}));
        Failing full(point, ENOSPC);
        mover.observer = &full;
        const auto report = mover.apply(moves({{"a", "b"}, {"b", "a"}}));
        EXPECT_EQ(report.refusal, SafeMover::Refusal::NoJournal);
        EXPECT_TRUE(report.refusalText.contains("No space left on device")) << report.refusalText.toStdString();
        EXPECT_EQ(statuses(report.outcomes), QList<S>(2, S::Failed));
        EXPECT_EQ(tree.files(), Files({{"a", "a"}, {"b", "b"}}));
        EXPECT_FALSE(mover.pending());
        EXPECT_FALSE(QFile::exists(journals + "/pending.journal.new"));
    }
}

TEST_F(SafeMoves, FileSystemsWithoutTheNoReplaceFlag)
{
    ASSERT_TRUE(tree.makeAll({"a", "b", "taken", "Folder/in"}));
    Failing unknownFlag(BatchPoint::Move, EINVAL);
    mover.observer = &unknownFlag;
    const auto report = mover.apply(moves({{"a", "b"}, {"b", "a"}, {"Folder", "Renamed"}}));
    EXPECT_EQ(statuses(report.outcomes), QList<S>(3, S::Renamed));
    EXPECT_EQ(tree.files(), Files({{"a", "b"}, {"b", "a"}, {"Renamed/in", "Folder/in"}, {"taken", "taken"}}));
    // Hard link then unlink: nothing replaced even when the name appears late.
    EXPECT_EQ(FileMoves::move(tree.path("a"), tree.path("taken"), {EINVAL, {}, {}}).error, EEXIST);
    EXPECT_EQ(FileMoves::move(tree.path("Renamed"), tree.path("taken"), {EINVAL, {}, {}}).error, EEXIST);
    EXPECT_EQ(tree.read("taken"), "taken");
}

TEST_F(SafeMoves, AcrossFileSystemsTheCopyIsRecordedSoUndoFindsIt)
{
    ASSERT_TRUE(tree.makeAll({"a", "Folder/in"}));
    Failing elsewhere(BatchPoint::Move, EXDEV);
    mover.observer = &elsewhere;
    EXPECT_EQ(statuses(mover.apply(moves({{"a", "b"}, {"Folder", "Moved"}})).outcomes), QList<S>(2, S::Renamed));
    EXPECT_EQ(tree.files(), Files({{"b", "a"}, {"Moved/in", "Folder/in"}}));
    mover.observer = nullptr;
    EXPECT_EQ(statuses(mover.undoLast().outcomes), QList<S>(2, S::Renamed)) << "the copies are the files now";
    EXPECT_EQ(tree.files(), Files({{"a", "a"}, {"Folder/in", "Folder/in"}}));
}

} // namespace
