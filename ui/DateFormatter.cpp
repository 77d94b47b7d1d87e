#include "DateFormatter.h"

#include "CalendarFormat.h"
#include "LocaleDates.h"

QString DateFormatter::stringFromDate(const QDateTime &date) const
{
    return CalendarFormat::format(date, format);
}

std::optional<QDateTime> DateFormatter::dateFromString(const QString &text) const
{
    if (auto date = CalendarFormat::parse(text, format))
        return date;
    if (auto date = LocaleDates::parse(text))
        return date;
    return CalendarFormat::parseDefault(text);
}
