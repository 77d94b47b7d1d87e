#pragma once

#include <QByteArray>

class FileSource;

// Where a JPEG keeps what it says of itself: found by walking its marker
// segments up to the picture data, reading only the segments asked for.
struct JpegSegments {
    QByteArray exif; // the EXIF block: "Exif\0\0" and its TIFF structure
    QByteArray xmp;  // the XMP packet
    int width = -1;  // the frame as stored (its start-of-frame segment)
    int height = -1;

    struct Wanted {
        bool exif = false;
        bool xmp = false;
        bool size = false;
    };
    static JpegSegments read(const FileSource &file, Wanted wanted);
};
