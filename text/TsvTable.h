#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

// Tab-separated tables: lines that are empty or start with "#" are skipped;
// the first other line names the keys, and each later line is a record of
// fields matched to the keys by position. Fields are neither trimmed nor
// unquoted; fields past the keys are dropped, missing ones simply absent,
// and a key named twice keeps its later field. A record with no field
// under any key is left out.
namespace TsvTable {

QVariantList dictionariesFromText(const QString &text);
// The file's bytes as text (a byte order mark names UTF-16 or UTF-32,
// otherwise UTF-8); a file that is not such text gives no records.
QVariantList dictionariesFromBytes(const QByteArray &bytes);

} // namespace TsvTable
