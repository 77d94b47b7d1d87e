#pragma once

#include <QString>

// Moves an item without ever replacing one: the move fails when the
// destination exists, atomically on one file system (renameat2 with
// RENAME_NOREPLACE); across file systems the item is copied (never over an
// existing one) and the original removed only after the copy is whole.
// Answers an errno-style code, 0 on success.
namespace FileMoves {
int moveWithoutReplacing(const QString &from, const QString &to);
}
