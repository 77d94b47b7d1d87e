#pragma once

#include "modules/ReaderModule.h"

#include <QByteArray>
#include <optional>

// A small picture a file carries, quicker to show than the file's own
// picture: a photograph's EXIF thumbnail (a JPEG of about 160 pixels a
// camera stores), a HEIF picture's thumbnail or its picture made small
// (through the HEIF reader module). Other files have none here; a picture
// library reads them whole.
namespace SmallPictures {

struct Picture {
    QByteArray jpeg;             // to decode, then turn as `orientation` says
    int orientation = 1;         // EXIF orientation, 1 for as it stands
    ReaderModule::Pixels pixels; // or decoded already, turned as the file asks
};

std::optional<Picture> of(const QByteArray &path, int side);

} // namespace SmallPictures
