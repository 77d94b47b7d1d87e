#pragma once

#include "Result.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <optional>

// The desktop's shared thumbnails, kept the way every Linux file manager
// keeps them: PNG files in $XDG_CACHE_HOME/thumbnails/normal
// (at most 128 pixels a side) and large (256), named by the MD5 of the
// file's URI, each holding the URI and modification time of the file it
// shows. File managers made most of them; those Nomen makes are written
// the same way, so the file managers use them too.
namespace ThumbnailCache {

// The side a normal thumbnail fits in.
inline constexpr int normalSize = 128;

// The file's URI as the cache names files: a file:// URI written as GLib
// writes it, so the hash is the one file managers compute.
QByteArray uriOf(const QByteArray &path);
// The cache's folder: $XDG_CACHE_HOME/thumbnails.
QByteArray folder();

// A thumbnail of the file that is still its own (its URI and modification
// time, in whole seconds, are the file's): normal, else large; nothing
// when none is.
std::optional<QImage> cached(const QByteArray &path, qint64 modified);
// Whether Nomen could not make one for this version of the file before.
bool failedBefore(const QByteArray &path, qint64 modified);

// Writes a thumbnail Nomen made: a normal one, with the file's URI,
// modification time, size and type, written aside and renamed into
// place, readable by its owner only.
Result<> store(const QByteArray &path, qint64 modified, qint64 size, const QString &mimeType, const QImage &picture);
// Notes that no thumbnail could be made, where the cache keeps each
// program's failures (thumbnails/fail/nomen-VERSION), so it is not tried
// again.
Result<> storeFailure(const QByteArray &path, qint64 modified);

} // namespace ThumbnailCache
