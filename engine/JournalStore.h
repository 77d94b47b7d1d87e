#pragma once

#include "BatchJournal.h"
#include "Result.h"

#include <QString>
#include <QStringList>
#include <optional>

class BatchObserver;

// The folder that holds the journals, private to the user (0700):
//   lock             held (flock) by whoever plans, moves, recovers or undoes
//   pending.journal  the batch under way, or cut short
//   history/         the batches that can be undone, newest last
// A journal is believed only if it is a regular file of the user's, readable
// by no one else, whole, and its checksum holds.
class JournalStore {
public:
    explicit JournalStore(QString directory);
    // $XDG_DATA_HOME/nomen, or ~/.local/share/nomen.
    static QString defaultDirectory();

    const QString &directory() const { return m_directory; }
    QString pendingPath() const;
    QString historyPath(const QString &entry) const;

    // Takes the lock, waiting up to `waitMs` for another run to let it go;
    // a holder may take it again; or says what stands in the way.
    Result<> lock(int waitMs);
    void unlock();

    bool hasPending() const;
    // The journal at `path` if it can be believed, else why not.
    Result<BatchJournal> load(const QString &path) const;

    // Writes the journal whole under a name of its own, flushes it, then
    // gives it the pending name (replacing a pending journal) and flushes
    // the folder.
    Result<> writePending(const BatchJournal &journal, BatchObserver *observer);
    // Adds a record to the pending journal and flushes it; an errno value.
    int appendToPending(const QByteArray &record, BatchObserver *observer);
    // The pending journal joins the history (the oldest entries beyond the
    // kept number go), or is removed.
    Result<> archivePending();
    Result<> discardPending();

    // History entries, newest first.
    QStringList history() const;
    Result<> removeHistory(const QString &entry);

    static constexpr int KeptBatches = 20;

private:
    QString historyDirectory() const;
    Result<> prepareFolder(const QString &folder) const;

    QString m_directory;
    int m_lockDescriptor = -1;
    int m_lockDepth = 0;
};
