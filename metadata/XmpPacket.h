#pragma once

#include "MetadataValues.h"

#include <QByteArray>

// The simple properties of an XMP packet that name files: the dates an
// exported, edited or scanned picture keeps only here, and the camera, lens
// and exposure. Read with expat (exiv2's own XML parser), in a few
// microseconds; the whole XMP data model (exiv2's, through Adobe's toolkit,
// which takes a lock shared by every thread and a millisecond a packet) is
// kept for «tag Xmp.…». Fills only what is still missing, and parses the
// packet only when it names a property that could.
namespace XmpPacket {

void read(const QByteArray &packet, const Metadata::Request &request, Metadata::Values &values);

} // namespace XmpPacket
