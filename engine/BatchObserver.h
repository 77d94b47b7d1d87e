#pragma once

#include <QString>
#include <cstddef>

// The points at which a batch can be watched, stopped or made to fail: tests
// stop the process at each of them, or fail the call made there, and check
// that the batch can still be finished, rolled back and undone.
enum class BatchPoint {
    WriteJournal, // before each block of the journal is written
    FlushJournal, // before the journal is flushed to disk
    PlaceJournal, // before the journal takes its name
    Move,         // before each move
    Moved,        // after each move
    RecordCopy,   // before a copy across file systems is recorded
    Settle,       // before the journal is filed in the history or removed
};

class BatchObserver {
public:
    virtual ~BatchObserver() = default;
    // Called at each point with a running count of that point and the path
    // it concerns (the journal, or the item about to move or just moved).
    // Answers 0 to go on, or an errno value: the call made at that point
    // fails with it instead of being made.
    virtual int at(BatchPoint point, size_t index, const QString &path) = 0;
};
