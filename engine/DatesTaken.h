#pragma once

#include <QByteArray>
#include <QDateTime>
#include <optional>

// When a photograph was taken or a recording made, as the camera recorded
// it. A photograph's date is the wall clock of the camera
// (DateTimeOriginal, else DateTimeDigitized), never moved into the zone of
// the machine that renames it; the offset recorded beside it is kept. A
// recording's QuickTime creation time is kept in UTC and shown in local
// time, unless the file also records the wall clock with its offset, as
// phones do.
struct DateTaken {
    qint64 milliseconds = 0; // the instant, since 1970 UTC
    qint32 offset = 0;       // seconds east of UTC the date is shown at

    // The date at its own offset, so its fields read as the camera's clock.
    QDateTime toDateTime() const;
    // A wall clock recorded with an offset, or without one (then shown as
    // it stands, at the local offset of that moment).
    static DateTaken atWallClock(const QDateTime &wallClock, std::optional<qint32> recordedOffset);
    // An instant, shown in local time.
    static DateTaken inLocalTime(qint64 milliseconds);
};

namespace DatesTaken {

// Photographs through exiv2: JPEG, TIFF, PNG, WebP, HEIC, AVIF and the
// camera raws it reads; recordings through libavformat: MP4, MOV, M4V, 3GP,
// M4A. Nothing for a file without a readable date.
std::optional<DateTaken> read(const QByteArray &path);

} // namespace DatesTaken
