#include "StringAdditions.h"

namespace StringAdditions {

QString wrapToLength(const QString &self, quint32 length)
{
    // Below two characters a line could never hold a break.
    if (quint32(self.size()) <= length || length < 2)
        return self;
    const qsizetype limit = qsizetype(length);
    QStringList wrapped;
    for (QString line : self.split(u'\n')) {
        while (line.size() > limit) {
            qsizetype cut = limit - 1; // no space or hyphen: a hard cut one short of the length
            for (qsizetype p = limit - 1; p >= 1; --p)
                if (line[p] == u' ' || line[p] == u'-') {
                    cut = p;
                    break;
                }
            wrapped.append(line.left(cut));
            // A space at the break goes; a hyphen starts the next line.
            line = deprefix(line.mid(cut), QStringLiteral(" "));
        }
        wrapped.append(line);
    }
    return wrapped.join(u'\n');
}

QString truncateStringToMaxCharacters(const QString &self, qint32 count)
{
    if (isBlankString(self) || self.size() <= count)
        return self;
    return self.left(std::max(count, 0)) + QChar(0x2026);
}

QString ordinalStringForInt(qint32 n)
{
    switch (n) {
    case -13:
    case -12:
    case -11:
    case 11:
    case 12:
    case 13:
        return QString::number(n) + QStringLiteral("th");
    case 0:
        return QStringLiteral("0");
    default:
        break;
    }
    static const char *const suffixes[] = {"th", "st", "nd", "rd", "th", "th", "th", "th", "th", "th"};
    return QString::number(n) + QLatin1String(suffixes[std::abs(n % 10)]);
}

QVariant pluralStringForCount(qint32 count, const QVariant &zero, const QVariant &singular, const QVariant &plural)
{
    if (count == 0 && !zero.isNull())
        return zero;
    if (count == 1 && !singular.isNull())
        return singular;
    return plural;
}

quint32 checksum(const QString &self)
{
    quint32 sum = 0;
    for (const QChar c : self)
        sum += c.unicode();
    return sum;
}

} // namespace StringAdditions
