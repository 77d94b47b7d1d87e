#pragma once

#include <QByteArray>
#include <QString>

namespace PathNames {

// A folder and a name in it, with one "/" between them ("/" + "a" is "/a").
QString joined(const QString &folder, const QString &name);
// The path without trailing slashes; the root stays "/".
QString withoutTrailingSlashes(QString path);
QByteArray withoutTrailingSlashes(QByteArray path);

// The last component of a path: trailing slashes do not count, and the root
// is itself.
QString lastComponent(const QString &path);

// A path made absolute from the working folder (left as it is when that
// cannot be read), without trailing slashes.
QString absolute(const QString &path);

// The folder that holds the item a path in the file system's bytes names:
// "." for a bare name, "/" for an item at the root.
QByteArray folderOf(const QByteArray &path);
QString folderOf(const QString &path);

// The most bytes a name may have on the file systems Nomen renames on.
inline constexpr qsizetype longestName = 255;

// `stem` cut at a character boundary so that it and `after` make a name of
// at most `bytes` bytes as the file system holds it; whole when they fit.
QString fittedBefore(const QString &stem, const QString &after, qsizetype bytes);

// A hidden name in the same folder as `path` for work in progress
// (".nomen-PURPOSE-PID-RANDOM"); whether it is free is for the caller to see.
QByteArray hiddenNameBeside(const QByteArray &path, const char *purpose);

} // namespace PathNames
