#pragma once

// With TZ unset, the C library looks at /etc/localtime again on every
// local-time conversion (a file status call each time), which dominated
// listing large folders. Naming the same file in TZ makes it read once.
// Call before any thread starts; a TZ the user set is left alone.
void pinLocalTimeZone();

#include <QString>

// The system's time zone and the country it lies in, from the files that
// name them: /etc/timezone (its first line) or else the zone the
// /etc/localtime link points into, and tzdata's table of zones.
namespace SystemTimeZone {

QString zoneName(const QString &timezoneFile = QStringLiteral("/etc/timezone"),
                 const QString &localtimeLink = QStringLiteral("/etc/localtime"));
// The two-letter code of the zone's country, "" for a zone in none (UTC).
// A zone the table lacks is looked up again under the zone its file links to.
QString countryOfZone(const QString &zone, const QString &zoneTable = QStringLiteral("/usr/share/zoneinfo/zone.tab"));

} // namespace SystemTimeZone
