#pragma once

#include "MetadataValues.h"

#include <QByteArray>
#include <cstddef>

// What exiv2 reads: the still-image formats it knows whole (TIFF, PNG,
// WebP, the camera raws, and a JPEG when a tag is asked for), an XMP
// packet, and the maker notes of an EXIF block. Each fills only what is
// still missing, so the readers can be asked in order of preference.
namespace Exiv2Reading {

void fromImage(const unsigned char *data, size_t size, const Metadata::Request &request, Metadata::Values &values);
void fromXmpPacket(const QByteArray &packet, const Metadata::Request &request, Metadata::Values &values);
// An EXIF block as JPEG and HEIF carry it ("Exif\0\0" and a TIFF structure),
// maker notes included.
void fromExifBlock(const QByteArray &block, const Metadata::Request &request, Metadata::Values &values);

} // namespace Exiv2Reading
