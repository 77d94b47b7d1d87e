#pragma once

#include <QVariant>

// The date a photograph was taken, from its EXIF data: DateTimeOriginal,
// else DateTimeDigitized, with the matching offset tag when there is one,
// otherwise in local time. A file without one answers false (not a date).
namespace ExifDates {
QVariant imageCreatedDate(const QString &path);
}
