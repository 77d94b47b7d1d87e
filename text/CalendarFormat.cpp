#include "CalendarFormat.h"

#include <QRegularExpression>
#include <QTimeZone>

namespace CalendarFormat {

namespace {

const char *const weekdays[] = {"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"};
const char *const months[] = {"January", "February", "March",     "April",   "May",      "June",
                              "July",    "August",   "September", "October", "November", "December"};

QString twoDigits(int value)
{
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

QString offsetText(int seconds)
{
    const int minutes = std::abs(seconds) / 60;
    return QStringLiteral("%1%2%3").arg(QChar(seconds < 0 ? u'-' : u'+')).arg(twoDigits(minutes / 60), twoDigits(minutes % 60));
}

QString zoneAbbreviation(const QDateTime &local)
{
    const QString name = local.timeZoneAbbreviation();
    return name.isEmpty() ? QStringLiteral("GMT") + offsetText(local.offsetFromUtc()) : name;
}

QString directive(const QDateTime &local, QChar code)
{
    const QDate date = local.date();
    const QTime time = local.time();
    switch (code.unicode()) {
    case u'Y':
        return QString::number(date.year());
    case u'y':
        return twoDigits(std::abs(date.year()) % 100);
    case u'm':
        return twoDigits(date.month());
    case u'd':
        return twoDigits(date.day());
    case u'e':
        return QString::number(date.day());
    case u'H':
        return twoDigits(time.hour());
    case u'I':
        return twoDigits(time.hour() % 12 == 0 ? 12 : time.hour() % 12);
    case u'M':
        return twoDigits(time.minute());
    case u'S':
        return twoDigits(time.second());
    case u'p':
        return time.hour() < 12 ? QStringLiteral("AM") : QStringLiteral("PM");
    case u'A':
        return QString::fromLatin1(weekdays[date.dayOfWeek() - 1]);
    case u'a':
        return QString::fromLatin1(weekdays[date.dayOfWeek() - 1]).left(3);
    case u'B':
        return QString::fromLatin1(months[date.month() - 1]);
    case u'b':
        return QString::fromLatin1(months[date.month() - 1]).left(3);
    case u'j':
        return QStringLiteral("%1").arg(date.dayOfYear(), 3, 10, QLatin1Char('0'));
    case u'Z':
        return zoneAbbreviation(local);
    case u'z':
        return offsetText(local.offsetFromUtc());
    case u'F':
        return QStringLiteral("%1").arg(time.msec(), 3, 10, QLatin1Char('0'));
    case u'c':
        return format(local, QStringLiteral("%a %b %d %H:%M:%S %Z %Y"));
    case u'x':
        return format(local, QStringLiteral("%a %b %d %Y"));
    case u'X':
        return format(local, QStringLiteral("%H:%M:%S"));
    case u'%':
        return QStringLiteral("%");
    default:
        return QStringLiteral("%") + code;
    }
}

} // namespace

QString format(const QDateTime &date, const QString &pattern)
{
    if (!date.isValid())
        return QString(QLatin1String(""));
    const QDateTime local = date.toLocalTime();
    QString out;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == u'%' && i + 1 < pattern.size())
            out += directive(local, pattern[++i]);
        else
            out += pattern[i];
    }
    return out;
}

std::optional<QDateTime> parseDefault(const QString &text)
{
    static const QRegularExpression form(QStringLiteral(
        "^\\s*(\\d{4})-(\\d{1,2})-(\\d{1,2}) (\\d{1,2}):(\\d{1,2}):(\\d{1,2}) ([+-])(\\d{2})(\\d{2})\\s*$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QDate date(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());
    const QTime time(match.captured(4).toInt(), match.captured(5).toInt(), match.captured(6).toInt());
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    const int offset = (match.captured(8).toInt() * 3600 + match.captured(9).toInt() * 60)
                       * (match.captured(7) == QLatin1String("-") ? -1 : 1);
    return QDateTime(date, time, QTimeZone(offset)).toLocalTime();
}

} // namespace CalendarFormat
