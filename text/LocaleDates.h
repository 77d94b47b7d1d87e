#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <optional>

// Dates written the way the user's locale writes them (LC_ALL, then
// LC_TIME, then LANG): the locale's short date, with or without its short
// or medium time. Reading forgives spacing, separators and a year of two or
// four digits, but never a field out of range: "21/12/2002" is no date
// where the month comes first.
namespace LocaleDates {

// "de_DE" from "de_DE.UTF-8@euro"; "en_US_POSIX" for the C and POSIX locales.
QByteArray timeLocaleName();
// A date in the local time zone; a date alone is read as its midnight.
std::optional<QDateTime> parse(const QString &text);

} // namespace LocaleDates
