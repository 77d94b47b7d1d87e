#include "SafeMover.h"
#include "ErrnoText.h"

#include "BatchObserver.h"
#include "PathCodec.h"

#include <algorithm>
#include <cstring>

using Batch::Move;
using Batch::Outcome;
using Batch::Status;

namespace {

QString changedReason(const QString &now, const QString &before)
{
    if (FileIdentity::at(PathCodec::encode(now)))
        return QStringLiteral("\"%1\" is no longer the file that was renamed from \"%2\"; it is left alone").arg(now, before);
    return QStringLiteral("\"%1\" is no longer there (it was renamed from \"%2\")").arg(now, before);
}

// What became of each item of a journal, as its runner left it.
std::vector<Outcome> itemOutcomes(const BatchJournal &journal, BatchRunner &runner, const BatchRunner::Result &result)
{
    std::vector<Outcome> outcomes;
    for (size_t item = 0; item < journal.items.size(); ++item) {
        const BatchJournal::Item &entry = journal.items[item];
        const Move move{journal.pathOf(entry, 0), journal.pathOf(entry, entry.last())};
        Outcome outcome{Batch::HeldMove::of(move), Status::Renamed, -1, {}, {}};
        const int at = result.positions[item];
        if (at == BatchRunner::NotFound) {
            outcome.status = Status::Failed;
            outcome.reason = changedReason(runner.pathNow(int(item), entry.last()), move.from);
        } else if (at != entry.last()) {
            outcome.status = Status::Failed;
            outcome.reason = result.problems[item].isEmpty() ? QStringLiteral("not renamed yet") : result.problems[item];
        } else {
            outcome.warning = result.problems[item];
        }
        outcomes.push_back(outcome);
    }
    return outcomes;
}

// The moves that put a journal's items back under their first names, from
// wherever each is now; an item found under none of its names has changed
// since and is reported instead.
struct MovesBack {
    std::vector<int> positions;
    std::vector<Move> moves;
    std::vector<int> items; // the journal item of each move
    std::vector<Outcome> changed;
};

MovesBack movesBack(BatchJournal &journal)
{
    BatchRunner located(journal, {});
    MovesBack back{located.locate(), {}, {}, {}};
    for (size_t item = 0; item < journal.items.size(); ++item) {
        const int at = back.positions[item];
        if (at == BatchRunner::NotFound) {
            const Move move{located.pathNow(int(item), journal.items[item].last()), located.pathNow(int(item), 0)};
            back.changed.push_back({Batch::HeldMove::of(move), Status::Failed, -1, changedReason(move.from, move.to), {}});
        } else if (at > 0) {
            back.moves.push_back({located.pathNow(int(item), at), located.pathNow(int(item), 0)});
            back.items.push_back(int(item));
        }
    }
    return back;
}

} // namespace

// The journal folder's lock for the length of one call.
class SafeMover::Locked {
public:
    Locked(JournalStore &store, int waitMs) : m_store(store), m_taken(store.lock(waitMs)) {}
    ~Locked()
    {
        if (m_taken)
            m_store.unlock();
    }
    Locked(const Locked &) = delete;
    Locked &operator=(const Locked &) = delete;

    std::optional<Report> refusal() const
    {
        if (m_taken)
            return std::nullopt;
        return Report{{}, Refusal::Busy, m_taken.reason(), false, {}};
    }

private:
    JournalStore &m_store;
    const Result<> m_taken;
};

SafeMover::SafeMover(QString journalDirectory) : m_store(std::move(journalDirectory)) {}

BatchRunner::Hooks SafeMover::hooks()
{
    return {observer, progress, interruption, [this](const QByteArray &record) { return m_store.appendToPending(record, observer); }};
}

Result<> SafeMover::hold()
{
    return m_store.lock(lockWaitMs);
}

void SafeMover::release()
{
    m_store.unlock();
}

std::vector<Outcome> SafeMover::plan(const std::vector<Move> &moves)
{
    return BatchPlan::make(moves, BatchJournal::Kind::Apply, false).outcomes;
}

std::optional<SafeMover::Pending> SafeMover::pending() const
{
    if (!m_store.hasPending())
        return std::nullopt;
    Pending pending;
    const auto journal = m_store.load(m_store.pendingPath());
    pending.problem = journal.reason();
    if (journal) {
        pending.kind = journal->kind;
        pending.items = journal->items.size();
        pending.folder = journal->folders.value(0);
    }
    return pending;
}

SafeMover::Report SafeMover::refusedJournal(const QString &path, const QString &why)
{
    return {{}, Refusal::Distrusted,
            QStringLiteral("the journal \"%1\" cannot be believed (%2); it is kept for inspection, and nothing was moved")
                .arg(path, why),
            false, {}};
}

std::optional<SafeMover::Report> SafeMover::pendingRefusal() const
{
    const auto waiting = pending();
    if (!waiting)
        return std::nullopt;
    if (!waiting->problem.isEmpty())
        return refusedJournal(m_store.pendingPath(), waiting->problem);
    return Report{{}, Refusal::Pending,
                  QStringLiteral("a batch of renames was cut short (%1 items in \"%2\"); it must be finished or rolled "
                                 "back before anything else is renamed")
                      .arg(waiting->items)
                      .arg(waiting->folder),
                  false, {}};
}

std::vector<Outcome> SafeMover::plan(const std::vector<ItemRecord> &rows, const QStringList &newNames, const SeenFolders *seen)
{
    return BatchPlan::make(rows, newNames, BatchJournal::Kind::Apply, false, seen).outcomes;
}

SafeMover::Report SafeMover::apply(const std::vector<Move> &moves)
{
    return applyPlanned([&moves] { return BatchPlan::make(moves, BatchJournal::Kind::Apply); });
}

SafeMover::Report SafeMover::apply(const std::vector<ItemRecord> &rows, const QStringList &newNames, const SeenFolders *seen)
{
    return applyPlanned([&] { return BatchPlan::make(rows, newNames, BatchJournal::Kind::Apply, true, seen); });
}

// Planned only under the lock, and only when no batch cut short waits.
SafeMover::Report SafeMover::applyPlanned(const std::function<BatchPlan()> &makePlan)
{
    const Locked lock(m_store, lockWaitMs);
    if (auto refused = lock.refusal())
        return *refused;
    if (auto refused = pendingRefusal())
        return *refused;
    BatchPlan plan = makePlan();
    if (plan.journal.steps.empty())
        return {plan.outcomes, Refusal::None, {}, false, {}};
    return execute(plan, {});
}

// Writes the journal, makes the moves, files the journal away. The rows a
// plan was made from keep their order; `alsoReported` follows them.
SafeMover::Report SafeMover::execute(BatchPlan &plan, std::vector<Outcome> alsoReported)
{
    Report report{std::move(plan.outcomes), Refusal::None, {}, false, {}};
    if (const auto written = m_store.writePending(plan.journal, observer); !written) {
        report.refusal = Refusal::NoJournal;
        report.refusalText = QStringLiteral("the journal cannot be written (%1); nothing was moved").arg(written.reason());
        for (Outcome &outcome : report.outcomes)
            if (outcome.status == Status::Renamed) {
                outcome.status = Status::Failed;
                outcome.reason = report.refusalText;
                outcome.warning.clear();
            }
        return report;
    }
    BatchRunner runner(plan.journal, hooks());
    const BatchRunner::Result result = runner.run(runner.atStart());
    for (size_t item = 0; item < plan.journal.items.size(); ++item) {
        const BatchJournal::Item &entry = plan.journal.items[item];
        Outcome &outcome = report.outcomes[size_t(entry.row)];
        if (result.positions[item] == entry.last()) {
            if (!result.problems[item].isEmpty())
                outcome.warning = result.problems[item];
            continue;
        }
        outcome.status = Status::Failed;
        outcome.reason = result.problems[item].isEmpty() ? QStringLiteral("not renamed yet") : result.problems[item];
    }
    report.outcomes.insert(report.outcomes.end(), alsoReported.begin(), alsoReported.end());
    report.interrupted = result.interrupted;
    if (result.interrupted)
        return report;
    return settle(plan.journal, result, std::move(report));
}

// A batch whose moves are all made (or failed for good) leaves the pending
// place: an applied one joins the history if it moved anything; an undo
// takes its batch out of the history once nothing of it is left to put back.
SafeMover::Report SafeMover::settle(const BatchJournal &journal, const BatchRunner::Result &result, Report report)
{
    if (!result.flushProblem.isEmpty()) {
        report.notice = result.flushProblem + QStringLiteral("; the batch stays pending until it is finished");
        return report;
    }
    // Each filing step may be watched; one that is made to fail leaves the
    // batch pending, to be finished later.
    auto failedAt = [&](size_t index, const QString &path) {
        const int error = observer ? observer->at(BatchPoint::Settle, index, path) : 0;
        if (error)
            report.notice = QStringLiteral("the journal could not be filed away: %1")
                                .arg(errnoText(error));
        return error != 0;
    };
    Result<> filed;
    switch (journal.kind) {
    case BatchJournal::Kind::Apply: {
        if (failedAt(0, m_store.pendingPath()))
            break;
        const bool movedAny = std::any_of(result.positions.begin(), result.positions.end(), [](int at) { return at > 0; });
        filed = movedAny ? m_store.archivePending() : m_store.discardPending();
        break;
    }
    case BatchJournal::Kind::Undo:
        // The undo leaves first: cut short between the two, the batch it
        // undid is still in the history, found all put back by the next undo.
        if (failedAt(0, m_store.pendingPath()))
            break;
        filed = m_store.discardPending();
        if (filed && !failedAt(1, m_store.historyPath(journal.undoes)))
            filed = settleUndo(journal.undoes);
        break;
    case BatchJournal::Kind::RollBack:
        if (!failedAt(0, m_store.pendingPath()))
            filed = m_store.discardPending();
        break;
    }
    if (!filed)
        report.notice = filed.reason();
    if (!report.notice.isEmpty() && m_store.hasPending())
        report.notice += QStringLiteral("; the batch stays pending until it is finished");
    return report;
}

Result<> SafeMover::settleUndo(const QString &entry)
{
    auto batch = m_store.load(m_store.historyPath(entry));
    if (!batch)
        return {}; // taken out already
    BatchRunner runner(*batch, {});
    const std::vector<int> positions = runner.locate();
    const bool nothingLeft = std::all_of(positions.begin(), positions.end(), [](int at) { return at <= 0; });
    return nothingLeft ? m_store.removeHistory(entry) : Result<>();
}

SafeMover::Report SafeMover::undoLast()
{
    const Locked lock(m_store, lockWaitMs);
    if (auto refused = lock.refusal())
        return *refused;
    if (auto refused = pendingRefusal())
        return *refused;
    // The newest batch with anything left to put back; one whose files are
    // all back already (an undo cut short as it ended) leaves the history.
    QString entry;
    std::optional<BatchJournal> batch;
    for (const QString &newest : m_store.history()) {
        auto loaded = m_store.load(m_store.historyPath(newest));
        if (!loaded)
            return refusedJournal(m_store.historyPath(newest), loaded.reason());
        batch = std::move(*loaded);
        const std::vector<int> positions = BatchRunner(*batch, {}).locate();
        if (std::any_of(positions.begin(), positions.end(), [](int at) { return at != 0; })) {
            entry = newest;
            break;
        }
        if (const auto removed = m_store.removeHistory(newest); !removed)
            return {{}, Refusal::None, {}, false, removed.reason()};
    }
    if (entry.isEmpty())
        return {};

    // Each item back from wherever it is now, if it is still the same file.
    const MovesBack back = movesBack(*batch);
    BatchPlan plan = BatchPlan::make(back.moves, BatchJournal::Kind::Undo);
    plan.journal.undoes = entry;
    if (plan.journal.steps.empty()) {
        Report report{plan.outcomes, Refusal::None, {}, false, settleUndo(entry).reason()};
        report.outcomes.insert(report.outcomes.end(), back.changed.begin(), back.changed.end());
        return report;
    }
    return execute(plan, back.changed);
}

SafeMover::Report SafeMover::withPending(const std::function<Report(BatchJournal &)> &act)
{
    const Locked lock(m_store, lockWaitMs);
    if (auto refused = lock.refusal())
        return *refused;
    if (!m_store.hasPending())
        return {};
    auto journal = m_store.load(m_store.pendingPath());
    if (!journal)
        return refusedJournal(m_store.pendingPath(), journal.reason());
    return act(*journal);
}

SafeMover::Report SafeMover::finishPending()
{
    return withPending([this](BatchJournal &journal) { return continuePending(journal); });
}

SafeMover::Report SafeMover::continuePending(BatchJournal &journal)
{
    BatchRunner runner(journal, hooks());
    const BatchRunner::Result result = runner.run(runner.locate());
    Report report{itemOutcomes(journal, runner, result), Refusal::None, {}, result.interrupted, {}};
    if (result.interrupted)
        return report;
    return settle(journal, result, std::move(report));
}

SafeMover::Report SafeMover::rollBackPending()
{
    return withPending([this](BatchJournal &journal) { return rollBack(journal); });
}

SafeMover::Report SafeMover::rollBack(BatchJournal &pendingJournal)
{
    BatchJournal *journal = &pendingJournal;
    // Rolling back a roll-back that was cut short is finishing it.
    if (journal->kind == BatchJournal::Kind::RollBack)
        return continuePending(*journal);

    MovesBack back = movesBack(*journal);
    std::vector<Move> &moves = back.moves;
    BatchPlan plan = BatchPlan::make(moves, BatchJournal::Kind::RollBack);
    // A file under a temporary name whose first name has been taken
    // meanwhile takes its new name instead: it must not stay out of sight.
    bool replan = false;
    for (size_t i = 0; i < moves.size(); ++i) {
        const int item = back.items[i];
        const BatchJournal::Item &entry = journal->items[size_t(item)];
        if (plan.outcomes[i].status == Status::Conflict && back.positions[size_t(item)] < entry.last()) {
            moves[i].to = moves[i].to.left(moves[i].to.lastIndexOf(u'/') + 1) + entry.names[entry.last()];
            replan = true;
        }
    }
    if (replan)
        plan = BatchPlan::make(moves, BatchJournal::Kind::RollBack);
    if (plan.journal.steps.empty()) {
        Report report{plan.outcomes, Refusal::None, {}, false, {}};
        report.outcomes.insert(report.outcomes.end(), back.changed.begin(), back.changed.end());
        report.notice = m_store.discardPending().reason();
        return report;
    }
    return execute(plan, back.changed);
}
