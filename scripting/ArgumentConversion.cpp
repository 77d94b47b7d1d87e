#include "ArgumentConversion.h"

#include "DictionaryAdditions.h"

namespace ArgumentConversion {

bool isNil(const QVariant &value)
{
    return !value.isValid() || value.typeId() == QMetaType::Nullptr;
}

// Bool is a number to the dictionaries, but an argument reads it apart.
bool isNumber(const QVariant &value)
{
    return value.typeId() != QMetaType::Bool && DictionaryAdditions::isNumber(value);
}

bool isUnsignedInteger(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

QString kindOf(const QVariant &value)
{
    if (isNil(value))
        return QStringLiteral("nil");
    if (value.typeId() == QMetaType::Bool)
        return QStringLiteral("a boolean");
    if (isNumber(value))
        return QStringLiteral("a number");
    switch (value.typeId()) {
    case QMetaType::QString:
        return QStringLiteral("a string");
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return QStringLiteral("a list");
    case QMetaType::QVariantMap:
        return QStringLiteral("a dictionary");
    case QMetaType::QDateTime:
        return QStringLiteral("a date");
    case QMetaType::QByteArray:
        return QStringLiteral("data");
    default:
        return QStringLiteral("a %1").arg(QString::fromLatin1(value.metaType().name()));
    }
}

quint64 wrapToUnsigned64(double value)
{
    if (!std::isfinite(value))
        return 0;
    constexpr double twoTo64 = 18446744073709551616.0;
    const double whole = std::fmod(std::trunc(value), twoTo64);
    if (whole >= 0)
        return quint64(whole);
    return ~quint64(-whole) + 1;
}

} // namespace ArgumentConversion

namespace ArgumentConversion {

namespace {

// The numbers of a list, or of a dictionary's keys in the order given; none
// when one is missing or not a number.
std::optional<QList<qreal>> numbersOf(const QVariant &value, std::initializer_list<const char *> keys)
{
    QList<qreal> numbers;
    if (value.typeId() == QMetaType::QVariantList) {
        const QVariantList items = value.toList();
        if (items.size() != qsizetype(keys.size()))
            return std::nullopt;
        for (const QVariant &item : items) {
            if (!isNumber(item))
                return std::nullopt;
            numbers.append(item.toDouble());
        }
        return numbers;
    }
    if (value.typeId() == QMetaType::QVariantMap) {
        const QVariantMap map = value.toMap();
        for (const char *key : keys) {
            const QVariant item = map.value(QLatin1String(key));
            if (!isNumber(item))
                return std::nullopt;
            numbers.append(item.toDouble());
        }
        return numbers;
    }
    return std::nullopt;
}

} // namespace

std::optional<QRectF> rectFrom(const QVariant &value)
{
    if (value.typeId() == QMetaType::QRectF || value.typeId() == QMetaType::QRect)
        return value.toRectF();
    if (const auto n = numbersOf(value, {"x", "y", "width", "height"}))
        return QRectF((*n)[0], (*n)[1], (*n)[2], (*n)[3]);
    return std::nullopt;
}

std::optional<QPointF> pointFrom(const QVariant &value)
{
    if (value.typeId() == QMetaType::QPointF || value.typeId() == QMetaType::QPoint)
        return value.toPointF();
    if (const auto n = numbersOf(value, {"x", "y"}))
        return QPointF((*n)[0], (*n)[1]);
    return std::nullopt;
}

} // namespace ArgumentConversion
