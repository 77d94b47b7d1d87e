#pragma once

#include "SeenFolder.h"

#include <QString>
#include <QStringList>
#include <deque>
#include <vector>

// Whether names exist, for a plan: the names of a folder that many moves
// touch are read once (one pass over the folder instead of a file status
// call per name, each walking the whole path again), and kept as sorted
// hashes of their bytes; a name whose hash is there is looked up to be
// sure. Only on file systems that compare names byte for byte; elsewhere
// each name is looked up. A folder a listing has just read (`seen`) is not
// read again.
class ExistingItems {
public:
    // `uses` counts the look-ups each folder (by index) will have.
    void readFoldersOf(const QStringList &folders, const std::vector<int> &uses, const SeenFolders *seen);
    // Whether `name` is taken in the folder (by index) whose path is `path`.
    bool contains(int folder, const QString &path, const QString &name) const;

private:
    const std::vector<quint32> *hashesIn(const QString &folder, const SeenFolders *seen);

    std::vector<const std::vector<quint32> *> m_hashes; // by folder index; none where each name is looked up
    std::deque<std::vector<quint32>> m_read;             // the folders read here
};
