#pragma once

#include <QString>
#include <functional>
#include <optional>
#include <vector>

// Moves a batch of files to their new names without ever losing one:
//   plan      every row is checked (an empty, ".", ".." or over-long name, a
//             "/" or NUL in it, two rows wanting one name, a name taken on
//             disk by a file that is not itself moving away);
//   order     chains (a->b, b->c) run back to front, swaps and cycles go
//             through a temporary name in the same folder, deeper items
//             before the folders that hold them;
//   journal   before the first move the whole plan is written and flushed
//             to disk, and each move is recorded as it completes;
//   move      never over an existing item; a move that fails leaves its file
//             where it was and the rest of the batch goes on.
// Undo moves the last batch back through the same steps. A journal left by
// a batch that did not finish can be finished or rolled back.
class SafeMover {
public:
    struct Move {
        QString from; // full paths
        QString to;
    };
    enum class Status { Renamed, Unchanged, Conflict, Failed };
    struct Outcome {
        Move move;
        Status status;
        QString reason;
    };

    explicit SafeMover(QString journalDirectory);

    static std::vector<Outcome> plan(const std::vector<Move> &moves);
    std::vector<Outcome> apply(const std::vector<Move> &moves);
    std::vector<Outcome> undoLast();

    // A batch that stopped part way, as its journal tells.
    bool hasUnfinishedBatch() const;
    bool finishUnfinished();
    bool rollBackUnfinished();

    // Called after each move of a batch with the moves made and the total.
    std::function<void(size_t done, size_t total)> progress;

    // For tests: the batch stops dead after this many renames, as a killed
    // process would.
    std::optional<int> stopAfterSteps;

private:
    struct Step {
        QString from;
        QString to;
        int row; // the row it serves, -1 for none
    };
    struct Journal {
        std::vector<Step> steps;
        std::vector<bool> done;
        bool finished = false;
    };
    std::vector<Step> order(const std::vector<Outcome> &planned) const;
    bool run(std::vector<Step> &steps, std::vector<bool> &done, const QString &journalPath,
             const std::function<void(int row, int error)> &report);
    std::optional<Journal> readJournal(const QString &path) const;
    QString currentJournal() const;
    QString lastJournal() const;

    QString m_directory;
};
