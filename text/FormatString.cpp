#include "FormatString.h"

#include <QByteArrayView>
#include <cstdio>

namespace FormatString {

namespace {

constexpr int maxWidth = 4096;

// Reads a run of digits (or one "*", which has no argument and counts as 0).
int readNumber(const QString &s, qsizetype &i)
{
    if (i < s.size() && s[i] == u'*') {
        ++i;
        return 0;
    }
    int value = 0;
    while (i < s.size() && s[i].isDigit() && s[i].unicode() < 128) {
        value = std::min(maxWidth, value * 10 + (s[i].unicode() - '0'));
        ++i;
    }
    return value;
}

// An object as "%@" prints it.
QString textOf(const QVariant &value)
{
    if (!value.isValid() || value.isNull())
        return QStringLiteral("(null)");
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    return value.toString();
}

// A number directive filled with the value (zero when there is none).
QString formatted(QChar conversion, const QString &flags, int width, int precision, const QVariant &value)
{
    QByteArray spec = "%" + flags.toLatin1();
    if (width > 0)
        spec += QByteArray::number(width);
    if (precision >= 0)
        spec += "." + QByteArray::number(precision);
    char buffer[2 * maxWidth + 64];
    const char c = char(conversion.unicode());
    if (QByteArrayView("eEfFgGaA").contains(c)) {
        spec += c;
        std::snprintf(buffer, sizeof buffer, spec.constData(), value.isValid() ? value.toDouble() : 0.0);
    } else {
        spec += "ll";
        spec += QByteArrayView("oxXu").contains(c) ? c : 'd';
        std::snprintf(buffer, sizeof buffer, spec.constData(), value.isValid() ? value.toLongLong() : 0LL);
    }
    return QString::fromLatin1(buffer);
}

// The long forms (%D, %U, %O) and %i are the plain ones.
QChar canonicalConversion(QChar c)
{
    switch (c.unicode()) {
    case u'D':
    case u'i':
        return u'd';
    case u'U':
        return u'u';
    case u'O':
        return u'o';
    default:
        return c;
    }
}

} // namespace

QString apply(const QString &format, const QVariantList &arguments)
{
    qsizetype next = 0;
    static const QString flagChars = QStringLiteral("-+ #0'");
    static const QString lengthChars = QStringLiteral("hlqLjzt");
    static const QString numeric = QStringLiteral("dDiuUoOxXeEfFgGaA");
    QString out;
    qsizetype i = 0;
    while (i < format.size()) {
        if (format[i] != u'%') {
            out += format[i++];
            continue;
        }
        const qsizetype start = i++;
        QString flags;
        while (i < format.size() && flagChars.contains(format[i]))
            flags += format[i++];
        const int width = readNumber(format, i);
        int precision = -1;
        if (i < format.size() && format[i] == u'.') {
            ++i;
            precision = readNumber(format, i);
        }
        while (i < format.size() && lengthChars.contains(format[i]))
            ++i;
        if (i >= format.size()) {
            out += format.mid(start);
            break;
        }
        const QChar conversion = format[i++];
        flags.remove(u'\'');
        if (conversion == u'%') {
            out += u'%';
        } else if (conversion == u'@' || conversion == u's' || conversion == u'S') {
            out += next < arguments.size() ? textOf(arguments[next++]) : QStringLiteral("(null)");
        } else if (conversion == u'c' || conversion == u'C' || conversion == u'p' || conversion == u'n') {
            if (next < arguments.size())
                ++next;
        } else if (numeric.contains(conversion)) {
            const QVariant value = next < arguments.size() ? arguments[next++] : QVariant();
            out += formatted(canonicalConversion(conversion), flags, width, precision, value);
        } else {
            out += format.mid(start, i - start);
        }
    }
    return out;
}

} // namespace FormatString
