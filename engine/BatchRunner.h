#pragma once

#include "BatchJournal.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <atomic>
#include <functional>
#include <optional>
#include <vector>

class BatchObserver;

// Carries out the moves of a journal that are not yet made. Where an item is
// comes from the disk: the name of its folder that holds its identity. So a
// move made twice, or a move made but never recorded, changes nothing; an
// item found under none of its names has changed since and is left alone.
// Folders renamed in the same batch are followed: an item's folder is found
// under the name its own item has reached.
class BatchRunner {
public:
    struct Hooks {
        BatchObserver *observer = nullptr;
        std::function<void(size_t done, size_t total)> progress;
        const std::atomic<bool> *interruption = nullptr; // stops between moves when set
        // Records a copy across file systems in the journal; an errno value.
        std::function<int(const QByteArray &record)> record;
    };

    static constexpr int NotFound = -1;

    BatchRunner(BatchJournal &journal, Hooks hooks);

    // Where each item is: the index of the name that holds it, or NotFound.
    std::vector<int> locate();
    // A journal just written: every item where it started.
    std::vector<int> atStart() const { return std::vector<int>(m_journal.items.size(), 0); }

    struct Result {
        std::vector<int> positions;
        std::vector<QString> problems; // per item: what kept it from its new name, or a warning
        bool interrupted = false;
        QString flushProblem; // the moves may not be on disk yet
    };
    // Makes the moves still to make, in the journal's order. An item whose
    // move fails makes no further move; one left under a temporary name
    // goes back to its first name where it can.
    Result run(std::vector<int> positions);

    // Where an item's folder is now, and the path of one of its names there.
    QString folderNow(int item);
    QString pathNow(int item, int position);

private:
    int positionOf(int item);
    QString resolve(const QString &path);
    void forgetFolders();
    const QByteArray &folderBytes(int folder, int item);
    bool moveItem(int item, int from, int to, size_t index, Result &result);
    bool bringBack(int item, int depth, size_t index, Result &result);
    QString describe(int error, int item, int from, int to);
    void flushFolders(Result &result);

    BatchJournal &m_journal;
    Hooks m_hooks;
    std::vector<int> m_positions;      // while locating: -2 for not yet known
    QHash<QString, int> m_folderItems; // items that are folders of others, by first path
    QSet<int> m_containers;            // the same items
    QHash<QString, QString> m_resolved;
    std::vector<std::optional<QByteArray>> m_folderBytes; // by journal folder
    QHash<QString, int> m_byFirstPath; // built when a move finds its name taken
    int m_lastError = 0;
};
