#include "JsonText.h"

#include "JsonString.h"

#include "JsValues.h"

#include <QDateTime>
#include <QJSValueIterator>
#include <QLocale>
#include <cmath>

namespace JsonText {

namespace {

constexpr int maxDepth = 64;

QString number(double value)
{
    if (!std::isfinite(value))
        return QStringLiteral("null");
    // Whole numbers print in full, as JavaScript prints them below 1e21.
    if (std::trunc(value) == value && std::abs(value) < 9.2e18)
        return QString::number(qint64(value));
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

void append(QString &out, const QJSValue &value, const ClassNamer &className, int depth)
{
    if (depth > maxDepth) {
        out += QStringLiteral("\"...\"");
    } else if (value.isNull() || value.isUndefined() || value.isCallable()) {
        out += QStringLiteral("null");
    } else if (value.isBool()) {
        out += value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    } else if (value.isNumber()) {
        out += number(value.toNumber());
    } else if (value.isString()) {
        out += JsonString::quoted(value.toString());
    } else if (value.isDate()) {
        out += JsonString::quoted(isoDate(value.toDateTime()));
    } else if (value.isQObject() || value.isVariant() || JsValues::isArrayBuffer(value)) {
        out += JsonString::quoted(u'<' + className(value) + u'>');
    } else if (value.isArray()) {
        out += u'[';
        const quint32 length = value.property(QStringLiteral("length")).toUInt();
        for (quint32 i = 0; i < length; ++i) {
            if (i)
                out += u',';
            append(out, value.property(i), className, depth + 1);
        }
        out += u']';
    } else {
        out += u'{';
        bool first = true;
        for (QJSValueIterator it(value); it.hasNext();) {
            it.next();
            if (!first)
                out += u',';
            first = false;
            out += JsonString::quoted(it.name()) + u':';
            append(out, it.value(), className, depth + 1);
        }
        out += u'}';
    }
}

} // namespace

QString isoDate(const QDateTime &date)
{
    const int offset = date.offsetFromUtc();
    const QDateTime local = date.toOffsetFromUtc(offset);
    const QString clock = local.toString(local.time().msec() ? QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")
                                                             : QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
    const int minutes = std::abs(offset) / 60;
    return QStringLiteral("%1%2%3:%4")
        .arg(clock, offset < 0 ? QStringLiteral("-") : QStringLiteral("+"))
        .arg(minutes / 60, 2, 10, QLatin1Char('0'))
        .arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

QString write(const QJSValue &value, const ClassNamer &className)
{
    QString out;
    append(out, value, className, 0);
    return out;
}

} // namespace JsonText
