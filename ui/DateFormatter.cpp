#include "DateFormatter.h"

#include "CalendarFormat.h"
#include "LocaleDates.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

QString DateFormatter::stringFromDate(const QDateTime &date) const
{
    return CalendarFormat::format(date, format);
}

namespace {

// "today", "tomorrow", "yesterday" (and the words the string table gives
// them in the user's language), "now", and a weekday with "next" or "last"
// or alone (the next one), each at noon unless a time follows ("tomorrow
// at 9:30 pm"), as a person writes a date in words.
std::optional<QDateTime> naturalDate(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^\\s*(?:(next|last)\\s+)?(\\S+)(?:\\s+(?:at\\s+)?(\\d{1,2})(?:[:.](\\d{2}))?(?:[:.](\\d{2}))?\\s*(am|pm|a\\.m\\.|p\\.m\\.)?)?\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QString word = match.captured(2).toLower();
    const QString direction = match.captured(1).toLower();
    const QDate today = QDate::currentDate();
    const auto named = [&word](const char *english) {
        return word == QLatin1String(english).toString().toLower()
               || word == QCoreApplication::translate("Localizable", english).toLower();
    };
    std::optional<QDate> day;
    if (word == QLatin1String("now") && direction.isEmpty() && !match.hasCaptured(3))
        return QDateTime::currentDateTime();
    if (direction.isEmpty() && named("Today"))
        day = today;
    else if (direction.isEmpty() && named("Tomorrow"))
        day = today.addDays(1);
    else if (direction.isEmpty() && named("Yesterday"))
        day = today.addDays(-1);
    for (int weekday = 1; weekday <= 7 && !day; ++weekday) {
        const QString name = QLocale::c().dayName(weekday).toLower();
        if (word != name && word != name.left(3))
            continue;
        const int ahead = (weekday - today.dayOfWeek() + 7) % 7;
        day = direction == QLatin1String("last") ? today.addDays(ahead == 0 ? -7 : ahead - 7)
                                                 : today.addDays(ahead == 0 ? 7 : ahead);
    }
    if (!day)
        return std::nullopt;
    if (!match.hasCaptured(3))
        return QDateTime(*day, QTime(12, 0), Qt::LocalTime);
    int hour = match.captured(3).toInt();
    const QString half = match.captured(6).toLower();
    if (!half.isEmpty()) {
        if (hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + (half.startsWith(u'p') ? 12 : 0);
    }
    const QTime time(hour, match.captured(4).toInt(), match.captured(5).toInt());
    if (!time.isValid())
        return std::nullopt;
    return QDateTime(*day, time, Qt::LocalTime);
}

} // namespace

std::optional<QDateTime> DateFormatter::dateFromString(const QString &text) const
{
    if (auto date = CalendarFormat::parse(text, format))
        return date;
    if (auto date = LocaleDates::parse(text))
        return date;
    if (auto date = CalendarFormat::parseDefault(text))
        return date;
    return naturalDate(text);
}
