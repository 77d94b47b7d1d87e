#pragma once

#include "BatchPlan.h"
#include "BatchRunner.h"
#include "JournalStore.h"

#include <QString>
#include <atomic>
#include <functional>
#include <optional>
#include <vector>

class BatchObserver;

// Renames a batch of files without ever losing one:
//   plan     every row is checked and the moves ordered (BatchPlan);
//   journal  the whole plan is written and flushed before the first move;
//            if it cannot be, nothing moves;
//   move     never over an existing item; a move that fails leaves its
//            file where it was and the rest of the batch goes on;
//   file     the journal joins the history of batches that can be undone.
// One run at a time holds the journal folder's lock. A batch cut short at
// any instant (a kill, a power cut) is left pending: nothing else is done
// until it is finished or rolled back, each deciding from the disk where
// every file is. Undo is a batch of its own, moving back only files that
// are still the ones that were renamed.
class SafeMover {
public:
    using Move = Batch::Move;
    using Status = Batch::Status;
    using Outcome = Batch::Outcome;

    enum class Refusal {
        None,
        Busy,        // another run holds the lock
        Pending,     // a batch cut short waits to be finished or rolled back
        Distrusted,  // a journal that is not whole, not ours, or damaged
        NoJournal,   // the journal could not be written
    };
    struct Report {
        std::vector<Outcome> outcomes;
        Refusal refusal = Refusal::None;
        QString refusalText; // nothing was moved, and why
        bool interrupted = false; // stopped between moves; the batch is pending
        QString notice; // the moves were made, but something about them is worth telling
    };
    struct Pending {
        BatchJournal::Kind kind = BatchJournal::Kind::Apply;
        size_t items = 0;
        QString folder;  // the first folder it renames in
        QString problem; // why its journal cannot be believed, if it cannot
    };

    explicit SafeMover(QString journalDirectory = JournalStore::defaultDirectory());

    // The outcome of every row, without moving anything.
    static std::vector<Outcome> plan(const std::vector<Move> &moves);
    Report apply(const std::vector<Move> &moves);
    // The same for a table's included rows and their new names, one outcome
    // per included row in order (its move left empty). `seen`: the names
    // the rows' listing saw, when it was made just before.
    static std::vector<Outcome> plan(const std::vector<ItemRecord> &rows, const QStringList &newNames,
                                     const SeenFolders *seen = nullptr);
    Report apply(const std::vector<ItemRecord> &rows, const QStringList &newNames, const SeenFolders *seen = nullptr);
    // Puts the most recent batch of the history back.
    Report undoLast();

    std::optional<Pending> pending() const;
    // What a batch cut short makes of any other: its refusal, in words
    // every front end shows as they are; nothing when none waits.
    std::optional<Report> pendingRefusal() const;
    Report finishPending();
    Report rollBackPending();

    // Holds the lock across several calls (the command line holds it from
    // listing to renaming, so what it lists is what it renames), or says
    // what stands in the way.
    Result<> hold();
    void release();

    std::function<void(size_t done, size_t total)> progress;
    const std::atomic<bool> *interruption = nullptr;
    BatchObserver *observer = nullptr; // for tests
    int lockWaitMs = 2000;

    const JournalStore &store() const { return m_store; }

private:
    class Locked;
    BatchRunner::Hooks hooks();
    // Under the lock, the pending journal handed to `act`; the lock's or
    // the journal's refusal, or nothing when no batch waits.
    Report withPending(const std::function<Report(BatchJournal &)> &act);
    static Report refusedJournal(const QString &path, const QString &why);
    Report applyPlanned(const std::function<BatchPlan()> &makePlan);
    Report execute(BatchPlan &plan, std::vector<Outcome> alsoReported);
    Report continuePending(BatchJournal &journal);
    Report rollBack(BatchJournal &journal);
    Report settle(const BatchJournal &journal, const BatchRunner::Result &result, Report report);
    Result<> settleUndo(const QString &entry);

    JournalStore m_store;
};
