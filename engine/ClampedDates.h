#pragma once

#include <QDateTime>
#include <optional>

// The four fixed dates of the engine and the rule that keeps an item's
// dates within them: a missing date or one before 1904 becomes 1 January
// 1904; the epoch in GMT becomes 1 January 1970 at local midnight; a date
// after 6 February 2040 becomes that day. Dates are milliseconds since
// 1970 inside the engine, and dates again where a script or the window
// shows them.
class ClampedDates {
public:
    ClampedDates();

    QDateTime date1904, date1970, date1970GMT, date2040;

    qint64 clamp(std::optional<qint64> milliseconds) const;
    QDateTime toDateTime(qint64 milliseconds) const;
    // With an offset (a date taken), the date at that offset: its fields
    // read as the camera's clock, wherever it is shown.
    QDateTime toDateTime(qint64 milliseconds, std::optional<qint32> offset) const;

private:
    qint64 m_1904, m_1970, m_2040;
};
