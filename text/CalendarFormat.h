#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

// Formats a date with calendar-format directives, with no
// locale (English names) in the default time zone:
//   %Y year, %y year in two digits, %m month, %d day, %e day without zero,
//   %H hour (24), %I hour (12), %M minute, %S second, %p AM/PM, %A weekday,
//   %a short weekday, %B month name, %b short month name, %j day of year,
//   %Z zone abbreviation, %z offset (+0100), %F milliseconds, %c date and
//   time ("%a %b %d %H:%M:%S %Z %Y"), %x date ("%a %b %d %Y"), %X time
//   ("%H:%M:%S"), %% a percent sign. Other text stays as it is.
namespace CalendarFormat {
QString format(const QDateTime &date, const QString &format);

// The form a calendar date describes itself in when no format is given.
inline const QString DefaultFormat = QStringLiteral("%Y-%m-%d %H:%M:%S %z");
// A text in the default form ("2005-03-14 09:05:00 +0100"), as local time.
std::optional<QDateTime> parseDefault(const QString &text);
// A text written in the given format, read back: numbers, English month
// names, AM/PM and offsets; weekday names and zone abbreviations are
// passed over. A field out of range is no date. Without an offset the
// date is local time.
std::optional<QDateTime> parse(const QString &text, const QString &format);
}
