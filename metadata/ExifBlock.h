#pragma once

#include "MetadataValues.h"

#include <QByteArray>

// A photograph's EXIF block ("Exif\0\0" and a TIFF structure), as JPEG and
// HEIF files carry it, read through libexif: the date taken, the camera,
// the lens and the exposure. Each listing thread reads into an arena of its
// own, emptied after each file, so reading takes no lock and no heap work
// per entry.
namespace ExifBlock {

// Fills what the block records of what `request` asks; answers whether the
// block holds a maker note, where a camera may keep more.
bool read(const QByteArray &block, const Metadata::Request &request, Metadata::Values &values);

} // namespace ExifBlock
