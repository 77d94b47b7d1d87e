#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

// A whole file's bytes, opened by its name's own bytes (see PathCodec), so
// a name that is not UTF-8 is read as it is on disk.
namespace FileBytes {

struct Contents {
    std::optional<QByteArray> bytes;
    QString reason; // why the bytes could not be read
    QString error;  // "PATH: reason"
};

Contents read(const QString &path);

// Replaces the file's contents as one step: the bytes go to a new file
// beside it, which is flushed and then renamed over the old one, so a
// reader sees the old contents or the new, never a part. An existing file
// keeps its permissions and extended attributes; a link is followed to the
// file it names. Answers "" on success, else "PATH: reason".
QString replaceContents(const QString &path, const QByteArray &bytes);

// Writes to the file itself, not to a new one: appended at its end, or
// over its contents. What the file is stays (its hard links, its
// attributes, a named pipe or a device); a pipe no one reads is refused
// rather than waited for. A missing file is created. "" on success, else
// "PATH: reason".
enum class InPlace { Append, Overwrite };
QString writeInPlace(const QString &path, const QByteArray &bytes, InPlace how);

} // namespace FileBytes
