#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <optional>

// A date formatter for a calendar format, as scripts hold one: it writes
// dates in the format and reads them back, and failing that reads what the
// user's locale writes, the default form, or a date in words ("today",
// "tomorrow at 9:30", "next friday").
struct DateFormatter {
    QString format;

    QString stringFromDate(const QDateTime &date) const;
    std::optional<QDateTime> dateFromString(const QString &text) const;
};
Q_DECLARE_METATYPE(DateFormatter)
