#include "JpegSegments.h"

#include "FileSource.h"

namespace {

const QByteArray exifSignature("Exif\0\0", 6);
const QByteArray xmpSignature("http://ns.adobe.com/xap/1.0/\0", 29);

bool isFrameStart(unsigned char marker)
{
    // SOF0 to SOF15, less DHT (C4), JPG (C8) and DAC (CC), which share the range.
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

} // namespace

JpegSegments JpegSegments::read(const FileSource &file, Wanted wanted)
{
    JpegSegments found;
    qint64 at = 2; // past the start-of-image marker
    unsigned char header[4];
    while (wanted.exif || wanted.xmp || wanted.size) {
        if (!file.read(at, header, 2) || header[0] != 0xFF)
            break;
        const unsigned char marker = header[1];
        if (marker == 0xFF) { // a fill byte before the marker
            ++at;
            continue;
        }
        // Markers without a segment: restarts, TEM, start of image.
        if ((marker >= 0xD0 && marker <= 0xD8) || marker == 0x01) {
            at += 2;
            continue;
        }
        // The picture data begins, or the image ends: no more segments.
        if (marker == 0xDA || marker == 0xD9 || !file.read(at + 2, header + 2, 2))
            break;
        const qint64 length = (qint64(header[2]) << 8) | header[3];
        if (length < 2)
            break;
        const qint64 body = at + 4;
        const qint64 bodySize = length - 2;
        if (marker == 0xE1 && (wanted.exif || wanted.xmp)) {
            const QByteArray start = file.bytes(body, std::min<qint64>(bodySize, xmpSignature.size()));
            if (wanted.exif && start.startsWith(exifSignature)) {
                found.exif = file.bytes(body, bodySize);
                wanted.exif = false;
            } else if (wanted.xmp && start == xmpSignature) {
                found.xmp = file.bytes(body + xmpSignature.size(), bodySize - xmpSignature.size());
                wanted.xmp = false;
            }
        } else if (isFrameStart(marker) && wanted.size) {
            unsigned char frame[5];
            if (bodySize >= 5 && file.read(body, frame, 5)) {
                found.height = (frame[1] << 8) | frame[2];
                found.width = (frame[3] << 8) | frame[4];
            }
            wanted.size = false;
        }
        at = body + bodySize;
    }
    return found;
}
