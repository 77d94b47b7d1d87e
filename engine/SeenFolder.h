#pragma once

#include "FileIdentity.h"

#include <QByteArrayView>
#include <QHashFunctions>
#include <vector>

// The names a listing saw in one folder: the folder by its identity, each
// name by a hash of its bytes, sorted. A plan made just after the listing
// looks names up here instead of reading the folder again. A hash found is
// still looked up on disk; a name that appeared since the listing is caught
// by the move itself, which never replaces an item.
struct SeenFolder {
    FileIdentity folder;
    std::vector<quint32> nameHashes;

    // Below this many names a plan looks each one up instead.
    static constexpr size_t fewest = 64;
    static quint32 hashOf(QByteArrayView name) { return quint32(qHash(name)); }
};
using SeenFolders = std::vector<SeenFolder>;
