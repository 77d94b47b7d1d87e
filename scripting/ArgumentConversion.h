#pragma once

#include "CharacterSet.h"
#include "ScriptClassNames.h"
#include "ScriptCoertions.h"

#include <QObject>

#include <QDateTime>
#include <QRectF>
#include <QStringList>
#include <QVariant>
#include <cmath>
#include <optional>
#include <type_traits>

// Conversion of the values scripts pass to the C++ types native functions
// take, and of what those functions answer back to values. Numbers arrive
// as doubles and are narrowed the way C narrows them, wrapping modulo the
// width of the type (so -1 is the all-ones unsigned value).
namespace ArgumentConversion {

// Thrown when an argument is not of a kind the parameter accepts; the bridge
// names the method and turns it into a script error.
struct WrongType {
    int index; // -1 for the receiver
    QString expected;
    QString given;
};

bool isNil(const QVariant &value);
QString kindOf(const QVariant &value);
bool isNumber(const QVariant &value);
bool isUnsignedInteger(const QVariant &value);
quint64 wrapToUnsigned64(double value);
// A rectangle as itself, as a list x, y, width, height, or as a dictionary
// with those keys; a point as itself, a list x, y or a dictionary.
std::optional<QRectF> rectFrom(const QVariant &value);
std::optional<QPointF> pointFrom(const QVariant &value);

template <typename T>
T convert(const QVariant &value, int index);

template <typename T>
    requires(std::is_integral_v<T> && !std::is_same_v<T, bool>)
T convertInteger(const QVariant &value, int index)
{
    if (isNil(value))
        return 0;
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
        return static_cast<T>(wrapToUnsigned64(value.toDouble()));
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? 1 : 0;
    if (isNumber(value))
        return isUnsignedInteger(value) ? static_cast<T>(value.toULongLong()) : static_cast<T>(value.toLongLong());
    throw WrongType{index, QStringLiteral("a number"), kindOf(value)};
}

template <typename T>
T convert(const QVariant &value, int index)
{
    if constexpr (std::is_same_v<T, QVariant>) {
        return value;
    } else if constexpr (std::is_same_v<T, bool>) {
        if (isNil(value))
            return false;
        if (value.typeId() == QMetaType::Bool || isNumber(value))
            return value.toDouble() != 0;
        throw WrongType{index, QStringLiteral("a boolean"), kindOf(value)};
    } else if constexpr (std::is_integral_v<T>) {
        return convertInteger<T>(value, index);
    } else if constexpr (std::is_floating_point_v<T>) {
        if (isNil(value))
            return 0;
        if (value.typeId() == QMetaType::Bool || isNumber(value))
            return static_cast<T>(value.toDouble());
        throw WrongType{index, QStringLiteral("a number"), kindOf(value)};
    } else if constexpr (std::is_same_v<T, QString>) {
        if (isNil(value))
            return QString();
        if (value.typeId() == QMetaType::QString)
            return value.toString();
        throw WrongType{index, QStringLiteral("a string"), kindOf(value)};
    } else if constexpr (std::is_same_v<T, QStringList>) {
        QStringList list;
        if (isNil(value))
            return list;
        if (value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QStringList)
            throw WrongType{index, QStringLiteral("a list of strings"), kindOf(value)};
        for (const QVariant &item : value.toList()) {
            if (item.typeId() != QMetaType::QString)
                throw WrongType{index, QStringLiteral("a list of strings"), QStringLiteral("a list holding ") + kindOf(item)};
            list.append(item.toString());
        }
        return list;
    } else if constexpr (std::is_same_v<T, QVariantList>) {
        if (isNil(value))
            return QVariantList();
        if (value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QStringList)
            throw WrongType{index, QStringLiteral("a list"), kindOf(value)};
        return value.toList();
    } else if constexpr (std::is_same_v<T, QVariantMap>) {
        if (isNil(value))
            return QVariantMap();
        if (value.typeId() != QMetaType::QVariantMap)
            throw WrongType{index, QStringLiteral("a dictionary"), kindOf(value)};
        return value.toMap();
    } else if constexpr (std::is_same_v<T, QRectF>) {
        if (const auto rect = rectFrom(value))
            return *rect;
        throw WrongType{index, QStringLiteral("a rectangle"), kindOf(value)};
    } else if constexpr (std::is_same_v<T, QPointF>) {
        if (const auto point = pointFrom(value))
            return *point;
        throw WrongType{index, QStringLiteral("a point"), kindOf(value)};
    } else if constexpr (std::is_same_v<T, QDateTime>) {
        if (isNil(value))
            return QDateTime();
        if (value.typeId() != QMetaType::QDateTime)
            throw WrongType{index, QStringLiteral("a date"), kindOf(value)};
        return value.toDateTime();
    } else if constexpr (std::is_same_v<T, QByteArray>) {
        if (isNil(value))
            return QByteArray();
        if (value.typeId() != QMetaType::QByteArray)
            throw WrongType{index, QStringLiteral("data"), kindOf(value)};
        return value.toByteArray();
    } else if constexpr (std::is_same_v<T, Descriptor>) {
        // Any other value stands for its descriptor.
        if (value.metaType() == QMetaType::fromType<Descriptor>())
            return value.value<Descriptor>();
        return ScriptCoertions::aeDescriptorValue(value);
    } else if constexpr (std::is_pointer_v<T> && std::is_base_of_v<QObject, std::remove_pointer_t<T>>) {
        if (isNil(value))
            return nullptr;
        if (auto *object = qobject_cast<T>(value.value<QObject *>()))
            return object;
        throw WrongType{index, QStringLiteral("a %1").arg(scriptClassName(std::remove_pointer_t<T>::staticMetaObject)),
                        kindOf(value)};
    } else if constexpr (std::is_same_v<T, CharacterSet>) {
        // A string stands for the set of its characters.
        if (value.metaType() == QMetaType::fromType<CharacterSet>())
            return value.value<CharacterSet>();
        if (isNil(value) || value.typeId() == QMetaType::QString)
            return CharacterSet::fromCharacters(value.toString());
        throw WrongType{index, QStringLiteral("a character set"), kindOf(value)};
    } else if constexpr (QMetaTypeId2<T>::Defined) {
        // A value class of ours comes as itself.
        if (value.metaType() == QMetaType::fromType<T>())
            return value.value<T>();
        throw WrongType{index, QStringLiteral("a ") + QString::fromLatin1(QMetaType::fromType<T>().name()), kindOf(value)};
    } else {
        static_assert(sizeof(T) == 0, "no conversion to this parameter type");
    }
}

template <typename T>
QVariant toVariant(const T &result)
{
    if constexpr (std::is_same_v<T, QVariant>)
        return result;
    else if constexpr (std::is_same_v<T, qsizetype>)
        return QVariant(qlonglong(result));
    else
        return QVariant::fromValue(result);
}

template <typename T>
QVariant toVariant(const std::optional<T> &result)
{
    return result ? toVariant(*result) : QVariant();
}

} // namespace ArgumentConversion
