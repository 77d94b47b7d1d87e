#pragma once

#include "BatchPlan.h"

#include <QString>
#include <vector>

// A mapping file: a tab-separated table whose first line names its columns
// "old" and "new", then one line per item. Lines that are empty or start
// with "#" are skipped. An old name is a path, taken from the working folder
// when relative; a new name is a name in the same folder (a path, if given,
// must lead there). The file is read as bytes, so names that are not UTF-8
// pass through unchanged.
namespace MapFile {

struct Read {
    std::vector<Batch::Move> moves; // none when there is an error
    QString error;                  // "" when every line could be read
};

Read read(const QString &path);
Read parse(const QByteArray &bytes, const QString &shownPath);

} // namespace MapFile
