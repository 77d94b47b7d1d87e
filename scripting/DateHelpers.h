#pragma once

#include <QDateTime>
#include <QVariant>
#include <functional>

class MethodRegistry;

// Which order of day, month and year the script language reads dates in,
// found by asking a script to read sample dates, and dates described
// relative to today.
namespace DateHelpers {

// The probe and date scripts, with the text quoted so that any text is
// safe inside them.
QString probeScript(const QString &dateText);
QString dateScript(const QString &dateText);

bool testDate(const MethodRegistry &methods, const QString &dateText);
// nil when no sample date is read.
QVariant returnDateFormat(const MethodRegistry &methods, bool asFormat, bool withWeekday, bool asNumeric);
QVariant makeLocalDate(const MethodRegistry &methods, bool textOnly, const QVariant &month, const QVariant &day,
                       const QVariant &year, const QString &time);
// "Today", "Yesterday" or "Tomorrow" (localized) by calendar day in the
// local time zone, else the date in the calendar format (an empty format:
// the "NSDateFormatString" default, then the locale's long date; nil: the
// default description). A text that is not a date gives "".
QVariant relativeDescriptionForDate(const QVariant &date, const QVariant &format);

// The clock relative descriptions count from; tests fix it.
void setClock(std::function<QDateTime()> clock);

} // namespace DateHelpers

void registerDateHelperMethods(MethodRegistry &registry);
