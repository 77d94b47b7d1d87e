#pragma once

#include "BatchPlan.h"
#include "Result.h"

#include <QString>
#include <vector>

// A mapping file: a tab-separated table whose first line names its columns
// "old" and "new", then one line per item. Lines that are empty or start
// with "#" are skipped. An old name is a path, taken from the working folder
// when relative; a new name is a name in the same folder (a path, if given,
// must lead there). The file is read as bytes, so names that are not UTF-8
// pass through unchanged.
namespace MapFile {

// The moves, or why a line could not be read.
Result<std::vector<Batch::Move>> read(const QString &path);
Result<std::vector<Batch::Move>> parse(const QByteArray &bytes, const QString &shownPath);

} // namespace MapFile
