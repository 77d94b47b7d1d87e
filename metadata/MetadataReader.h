#pragma once

#include "MetadataValues.h"

#include <QByteArray>

// The one reader of what files say: opens a file once, tells its kind from
// its first bytes (never from its name), and answers every value asked of
// it from that one opening, each library reading through the same
// descriptor. A request that asks nothing opens nothing.
//
//   JPEG         its EXIF block (libexif), then XMP and maker notes (exiv2)
//   HEIF, AVIF   the picture's EXIF and XMP (libheif, a module), as JPEG
//   other stills TIFF, PNG, WebP, camera raws: exiv2
//   music        MP3, FLAC, Ogg, Opus, M4A, WAV, AIFF, WMA, APE: TagLib
//   recordings   MP4, MOV, 3GP, Matroska, AVI: libavformat (a module)
namespace MetadataReader {

Metadata::Values read(const QByteArray &path, const Metadata::Request &request);

} // namespace MetadataReader
