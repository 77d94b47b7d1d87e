#pragma once

#include "MetadataValues.h"

#include <QByteArray>

// A photograph's EXIF block ("Exif\0\0" and a TIFF structure), as JPEG and
// HEIF files carry it, read through libexif: the date taken, the camera,
// the lens and the exposure. Each listing thread reads into an arena of its
// own, emptied after each file, so reading takes no lock and no heap work
// per entry.
namespace ExifBlock {

// What a block's maker note, where a camera keeps more, may hold for exiv2
// to read: it knows the maker notes of the main makers, and their lens
// entries.
struct MakerNote {
    bool readable = false;    // there is one, of a maker exiv2 knows
    bool mayHoldLens = false; // and it may name the lens
};

// Fills what the block records of what `request` asks.
MakerNote read(const QByteArray &block, const Metadata::Request &request, Metadata::Values &values);

// The small JPEG a camera keeps in the block, and the turn (EXIF
// orientation, 1 for none) the photograph asks for.
struct Thumbnail {
    QByteArray jpeg;
    int orientation = 1;
};
Thumbnail thumbnail(const QByteArray &block);

} // namespace ExifBlock
