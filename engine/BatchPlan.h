#pragma once

#include "BatchJournal.h"
#include "ItemRecord.h"
#include "SeenFolder.h"

#include <QString>
#include <QExplicitlySharedDataPointer>
#include <optional>
#include <vector>

// What a batch asks and what becomes of each row.
namespace Batch {

struct Move {
    QString from; // full paths; the new one in the same folder
    QString to;
};

enum class Status { Renamed, Unchanged, Conflict, Failed };

// A move an outcome holds itself, shared by the outcome's copies.
struct HeldMove : QSharedData {
    using Pointer = QExplicitlySharedDataPointer<const HeldMove>;
    explicit HeldMove(Move held) : move(std::move(held)) {}
    static Pointer of(Move move) { return Pointer(new HeldMove(std::move(move))); }
    Move move;
};

struct Outcome {
    // Planned from moves; none for a table's row, named by `row` (a hundred
    // thousand rows would hold two hundred thousand empty strings).
    HeldMove::Pointer held;
    Status status = Status::Renamed;
    int row = -1;    // planned from a table: the table row it speaks of
    QString reason;  // why a row is a conflict or failed, naming the files
    QString warning; // a name that will be given but may surprise (hidden, a space at an end)
};

// The table a plan's outcomes were made from: a row's outcome holds no
// paths (a hundred thousand rows would hold two hundred thousand), so
// where each item is and where it goes is told from its row when asked.
struct TableRows {
    const std::vector<ItemRecord> *rows = nullptr;
    const QStringList *newNames = nullptr;

    // The outcome's own move, or its row's path and new one.
    Move moveOf(const Outcome &outcome) const;
    // The row an outcome speaks of (its new name at the same index), or
    // none for an outcome that holds its move.
    const ItemRecord *rowOf(const Outcome &outcome) const;
};

} // namespace Batch

// Checks every row of a batch and orders its moves, before anything moves:
//   check  a new name is a single name (not empty, ".", "..", no "/" or NUL,
//          at most 255 bytes); two rows may not want one name or move one
//          file; a name taken on disk is free only if its item moves away;
//   order  deeper items before the folders that hold them; a chain (a->b,
//          b->c) back to front; a swap or cycle through a temporary name in
//          the same folder.
// Paths are made absolute and their folders resolved, so a journal names
// the same files from wherever it is read.
struct BatchPlan {
    std::vector<Batch::Outcome> outcomes; // one per row, in the rows' order
    BatchJournal journal;                 // the rows that will be renamed
    std::vector<int> rows;                // planned from a table: the table row of each outcome

    // Without `ordered` only the outcomes are worked out, as for a dry run.
    static BatchPlan make(const std::vector<Batch::Move> &moves, BatchJournal::Kind kind, bool ordered = true);
    // A table's included rows, each to take its new name, planned from the
    // rows' own strings and identities; each outcome names its row and
    // holds no move (Batch::TableRows tells it). `seen`: the names the
    // rows' listing saw, when it was made just before.
    static BatchPlan make(const std::vector<ItemRecord> &rows, const QStringList &newNames, BatchJournal::Kind kind,
                          bool ordered = true, const SeenFolders *seen = nullptr);

    // The moves that give a table's included rows their new names, one per
    // included row in row order, each with its row: the one way rows
    // become moves.
    struct RowMove {
        int row;
        Batch::Move move;
    };
    static std::vector<RowMove> movesOf(const std::vector<ItemRecord> &rows, const QStringList &newNames);
    static Batch::Move moveOf(const ItemRecord &row, const QString &newName) { return {row.path(), row.location + newName}; }
};
