#include "JsValues.h"

#include <vector>

#include "ArgumentConversion.h"
#include "ErrorInfo.h"
#include "NamedException.h"
#include "ScriptCoertions.h"
#include "TextRange.h"

#include <QDateTime>
#include <QJSValueIterator>
#include <cmath>

namespace JsValues {

namespace {

QVariant numberFromJs(double number)
{
    const bool whole = std::trunc(number) == number && !(number == 0 && std::signbit(number));
    if (whole && number >= INT32_MIN && number <= INT32_MAX)
        return QVariant(int(number));
    return QVariant(number);
}

QJSValue listToJs(QJSEngine &engine, const QVariantList &list)
{
    QJSValue array = engine.newArray(quint32(list.size()));
    for (qsizetype i = 0; i < list.size(); ++i)
        array.setProperty(quint32(i), toJs(engine, list[i]));
    return array;
}

QJSValue mapToJs(QJSEngine &engine, const QVariantMap &map)
{
    QJSValue object = engine.newObject();
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        object.setProperty(it.key(), toJs(engine, it.value()));
    return object;
}

} // namespace

bool isArrayBuffer(const QJSValue &value)
{
    // Asked of the prototype, so no script code (a toString of its own) runs.
    return value.isObject() && !value.isArray() && !value.isVariant() && !value.isQObject()
           && value.prototype().property(QStringLiteral("constructor")).property(QStringLiteral("name")).toString()
                  == QLatin1String("ArrayBuffer");
}

bool isBox(const QJSValue &value)
{
    return value.isArray()
           || (value.isObject() && !value.isDate() && !value.isQObject() && !value.isVariant() && !value.isCallable()
               && !value.isRegExp() && !isArrayBuffer(value));
}

namespace {

// The arrays and objects being converted, from the outermost in: a value
// met again among them holds itself.
QVariant fromJs(const QJSValue &value, std::vector<QJSValue> &path)
{
    if (value.isUndefined() || value.isNull())
        return QVariant();
    if (value.isBool())
        return QVariant(value.toBool());
    if (value.isNumber())
        return numberFromJs(value.toNumber());
    if (value.isString())
        return QVariant(value.toString());
    if (value.isDate())
        return QVariant(value.toDateTime());
    if (value.isQObject())
        return QVariant::fromValue(value.toQObject());
    if (value.isVariant())
        return value.toVariant();
    if (value.isCallable())
        throw NamedException(NSInvalidArgumentException, QStringLiteral("a function cannot cross to native code"));
    if (isArrayBuffer(value))
        return value.toVariant();
    for (const QJSValue &outer : path)
        if (outer.strictlyEquals(value))
            throw NamedException(NSInvalidArgumentException, QStringLiteral("a value that holds itself cannot cross to native code"));
    if (path.size() >= JsValues::MaximumDepth)
        throw NamedException(NSInvalidArgumentException, QStringLiteral("a value nested deeper than %1 levels cannot cross "
                                                                        "to native code")
                                                             .arg(JsValues::MaximumDepth));
    path.push_back(value);
    QVariant converted;
    if (value.isArray()) {
        QVariantList list;
        const quint32 length = value.property(QStringLiteral("length")).toUInt();
        list.reserve(length);
        for (quint32 i = 0; i < length; ++i)
            list.append(fromJs(value.property(i), path));
        converted = list;
    } else {
        QVariantMap map;
        QJSValueIterator it(value);
        while (it.hasNext()) {
            it.next();
            map.insert(it.name(), fromJs(it.value(), path));
        }
        converted = map;
    }
    path.pop_back();
    return converted;
}

} // namespace

QVariant fromJs(const QJSValue &value)
{
    std::vector<QJSValue> path;
    return fromJs(value, path);
}

QJSValue toJs(QJSEngine &engine, const QVariant &value)
{
    if (ArgumentConversion::isNil(value))
        return QJSValue(QJSValue::NullValue);
    if (value.typeId() == QMetaType::Bool)
        return QJSValue(value.toBool());
    if (ArgumentConversion::isNumber(value))
        return QJSValue(value.toDouble());
    switch (value.typeId()) {
    case QMetaType::QString:
        return QJSValue(value.toString());
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return listToJs(engine, value.toList());
    case QMetaType::QVariantMap:
        return mapToJs(engine, value.toMap());
    case QMetaType::QDateTime:
    case QMetaType::QByteArray:
        return engine.toScriptValue(value);
    case QMetaType::QObjectStar:
        // An object with no parent belongs to the script from now on; one
        // with a parent, or marked as native-owned, stays with its owner.
        return engine.newQObject(value.value<QObject *>());
    default:
        break;
    }
    if (value.metaType() == QMetaType::fromType<TextRange>()) {
        const TextRange range = value.value<TextRange>();
        return mapToJs(engine, {{QStringLiteral("location"), qlonglong(range.location)},
                                {QStringLiteral("length"), qlonglong(range.length)}});
    }
    if (value.metaType() == QMetaType::fromType<ErrorInfo>()) {
        const ErrorInfo error = value.value<ErrorInfo>();
        return mapToJs(engine, {{QStringLiteral("domain"), error.domain},
                                {QStringLiteral("code"), error.code},
                                {QStringLiteral("message"), error.localizedDescription}});
    }
    if (value.metaType() == QMetaType::fromType<MixedKeyDictionary>()) {
        // Number keys (four-character keywords) become their decimal text.
        QJSValue object = engine.newObject();
        for (const auto &[key, item] : value.value<MixedKeyDictionary>().entries)
            object.setProperty(key.toString(), toJs(engine, item));
        return object;
    }
    if (value.metaType().flags() & QMetaType::PointerToQObject)
        return toJs(engine, QVariant::fromValue(value.value<QObject *>()));
    return engine.toScriptValue(value);
}

void fillBox(QJSEngine &engine, QJSValue &box, const QVariant &value)
{
    if (box.isArray()) {
        box.setProperty(QStringLiteral("length"), 0);
        const QVariantList items = ArgumentConversion::isNil(value) ? QVariantList() : value.toList();
        for (qsizetype i = 0; i < items.size(); ++i)
            box.setProperty(quint32(i), toJs(engine, items[i]));
        return;
    }
    QStringList names;
    for (QJSValueIterator it(box); it.hasNext();) {
        it.next();
        names.append(it.name());
    }
    for (const QString &name : names)
        box.deleteProperty(name);
    const QJSValue filled = toJs(engine, value);
    for (QJSValueIterator it(filled); filled.isObject() && it.hasNext();) {
        it.next();
        box.setProperty(it.name(), it.value());
    }
}

} // namespace JsValues
