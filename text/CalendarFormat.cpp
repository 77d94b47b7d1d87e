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
    // A date that carries an offset of its own (a photograph's, as its
    // camera recorded it) is written at that offset, not moved into the
    // machine's zone.
    const QDateTime local = date.timeSpec() == Qt::OffsetFromUTC ? date : date.toLocalTime();
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

namespace {

// What a directive reads, as a pattern with one capture (or none).
QString readingPattern(QChar code)
{
    switch (code.unicode()) {
    case u'Y':
        return QStringLiteral("([-+]?\\d{1,4})");
    case u'y': case u'm': case u'd': case u'e': case u'H': case u'I': case u'M': case u'S':
        return QStringLiteral("(\\d{1,2})");
    case u'j': case u'F':
        return QStringLiteral("(\\d{1,3})");
    case u'p':
        return QStringLiteral("([AaPp][Mm])");
    case u'A': case u'a': case u'B': case u'b':
        return QStringLiteral("([A-Za-z]+)");
    case u'Z':
        return QStringLiteral("(\\S+)");
    case u'z':
        return QStringLiteral("([-+]\\d{4})");
    case u'%':
        return QStringLiteral("%");
    default:
        return QRegularExpression::escape(QStringLiteral("%") + code);
    }
}

int monthNamed(const QString &name)
{
    for (int i = 0; i < 12; ++i) {
        const QString month = QString::fromLatin1(months[i]);
        if (name.compare(month, Qt::CaseInsensitive) == 0 || name.compare(month.left(3), Qt::CaseInsensitive) == 0)
            return i + 1;
    }
    return 0;
}

} // namespace

std::optional<QDateTime> parse(const QString &text, const QString &pattern)
{
    QString expanded = pattern;
    expanded.replace(QLatin1String("%c"), QLatin1String("%a %b %d %H:%M:%S %Z %Y"))
        .replace(QLatin1String("%x"), QLatin1String("%a %b %d %Y"))
        .replace(QLatin1String("%X"), QLatin1String("%H:%M:%S"));
    QString regex = QStringLiteral("^\\s*");
    QList<QChar> codes;
    for (qsizetype i = 0; i < expanded.size(); ++i) {
        if (expanded[i] == u'%' && i + 1 < expanded.size()) {
            const QChar code = expanded[++i];
            regex += readingPattern(code);
            if (readingPattern(code).startsWith(u'('))
                codes.append(code);
        } else {
            regex += expanded[i].isSpace() ? QStringLiteral("\\s+") : QRegularExpression::escape(QString(expanded[i]));
        }
    }
    const QRegularExpressionMatch match = QRegularExpression(regex + QStringLiteral("\\s*$")).match(text);
    if (!match.hasMatch() || codes.isEmpty())
        return std::nullopt;
    int year = 2001, month = 1, day = 1, dayOfYear = 0, hour = 0, minute = 0, second = 0, msec = 0;
    std::optional<int> pm, offset;
    for (qsizetype i = 0; i < codes.size(); ++i) {
        const QString field = match.captured(int(i) + 1);
        const int number = field.toInt();
        switch (codes[i].unicode()) {
        case u'Y': year = number; break;
        case u'y': year = number < 70 ? 2000 + number : 1900 + number; break;
        case u'm': month = number; break;
        case u'd': case u'e': day = number; break;
        case u'j': dayOfYear = number; break;
        case u'H': hour = number; break;
        case u'I': hour = number % 12; break;
        case u'M': minute = number; break;
        case u'S': second = number; break;
        case u'F': msec = number; break;
        case u'p': pm = field.compare(QLatin1String("PM"), Qt::CaseInsensitive) == 0; break;
        case u'B': case u'b':
            if (!(month = monthNamed(field)))
                return std::nullopt;
            break;
        case u'z':
            offset = (field.mid(1, 2).toInt() * 3600 + field.mid(3, 2).toInt() * 60) * (field[0] == u'-' ? -1 : 1);
            break;
        default:
            break;
        }
    }
    if (pm && *pm)
        hour += 12;
    QDate date(year, month, day);
    if (dayOfYear > 0)
        date = QDate(year, 1, 1).addDays(dayOfYear - 1);
    const QTime time(hour, minute, second, msec);
    if (!date.isValid() || !time.isValid() || (dayOfYear > 0 && date.year() != year))
        return std::nullopt;
    return offset ? QDateTime(date, time, QTimeZone(*offset)).toLocalTime() : QDateTime(date, time);
}

} // namespace CalendarFormat
