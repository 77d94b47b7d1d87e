#pragma once

#include <QDateTime>
#include <QStringView>
#include <optional>

// When a photograph was taken or a recording made, as the camera recorded
// it. A photograph's date is the wall clock of the camera, never moved into
// the zone of the machine that renames it; the offset recorded beside it is
// kept. A recording's QuickTime creation time is kept in UTC and shown in
// local time, unless the file also records the wall clock with its offset,
// as phones do.
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

    bool operator==(const DateTaken &) const = default;
};

// A recorded date and time as files write them: "2019:07:04 01:30:00" (EXIF),
// "2022-09-10T11:12:13.000000Z" or "2022-09-10T13:12:13+0200" (recordings),
// "2005-09-07T15:07:40-07:00" or "2005-09-07" (XMP); a fraction and an
// offset may follow. A clock of zeros is how a camera says it does not know.
struct RecordedStamp {
    QDateTime wallClock; // the fields as written, held as UTC
    std::optional<qint32> offset;

    static std::optional<RecordedStamp> parse(QStringView text);
    // "+09:00", "-0800", "Z": seconds east of UTC.
    static std::optional<qint32> parseOffset(QStringView text);

    // The date this stamp gives, with `offset` recorded elsewhere when the
    // stamp has none of its own.
    DateTaken taken(std::optional<qint32> separateOffset = std::nullopt) const;
};
