#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>

// Moves an item without ever replacing one. On one file system the move is
// atomic and fails when the destination exists (renameat2 with
// RENAME_NOREPLACE; where the file system does not know that flag, a hard
// link then removal of the old name for files, and a rename after checking
// the destination is free for folders). Across file systems the item is
// copied, never over an existing one, with its extended attributes, owner
// (where allowed), permissions and times; the copy and its folder are
// flushed to disk, and only then is the original removed.
namespace FileMoves {

struct Result {
    int error = 0;        // an errno value; 0 when the item is at its destination
    QString detail;       // what failed, naming the files, when the errno alone does not say
    bool originalKept = false; // copied whole, but the original could not be removed: both are there

    bool moved() const { return error == 0 || originalKept; }
};

struct Options {
    // For tests: the first rename answers this errno value instead of
    // being made (EINVAL as from a file system without RENAME_NOREPLACE,
    // EXDEV as across file systems).
    int simulatedRenameError = 0;
    // Called when a copy across file systems is whole and on disk, before
    // the original is removed: answer 0 to go on, or an errno value to give
    // up (the copy is removed and the original kept).
    std::function<int(const QByteArray &copy)> copied;
    // What becomes of the user's extended attributes (user.*) that the
    // destination cannot hold (a FAT stick holds none): unset, the copy
    // fails; set, they are left behind, as cp -a leaves them, and each
    // item's are told here with the item they were on.
    std::function<void(const QByteArray &item, const QList<QByteArray> &names)> attributesLeftBehind;
};

Result move(const QString &from, const QString &to, const Options &options = {});
// The same for paths already in the file system's bytes.
Result move(const QByteArray &from, const QByteArray &to, const Options &options = {});

// Copies an item with everything in it (modes, times, extended attributes;
// file contents shared or copied in the kernel where the file systems
// allow) to a destination that must not exist. The copy is made under a
// hidden name beside the destination and renamed when whole; one that fails
// part way is removed again.
Result copy(const QByteArray &from, const QByteArray &to, const Options &options = {});
// A hidden name beside `path` that nothing has yet, for an item while it is
// made; "" when none is found.
QByteArray freeNameBeside(const QByteArray &path, const char *purpose);
// Removes an item with everything in it; a link goes, not what it names.
Result remove(const QByteArray &path);

// The move as a bare errno value, 0 on success.
int moveWithoutReplacing(const QString &from, const QString &to);

} // namespace FileMoves
