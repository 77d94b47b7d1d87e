#include "ScriptCoertions.h"
#include "ScriptClassNames.h"

#include "PathCodec.h"
#include "SystemLog.h"
#include "TextRange.h"

#include <QLineF>
#include <QObject>
#include <QRect>
#include <QRectF>

void MixedKeyDictionary::setValue(const QVariant &key, const QVariant &value)
{
    for (auto &entry : entries) {
        if (entry.first == key) {
            entry.second = value;
            return;
        }
    }
    entries.append({key, value});
}

namespace ScriptCoertions {

namespace {

Descriptor listOf(const QVariantList &items)
{
    Descriptor list = Descriptor::list();
    for (qsizetype i = 0; i < items.size(); ++i)
        list.insertDescriptor(aeDescriptorValue(items[i]), i + 1);
    return list;
}

// Number keys are keywords; string keys and their values go, unconverted,
// into one alternating list under 'usrf'; keys of other kinds are dropped.
Descriptor recordOf(const QList<std::pair<QVariant, QVariant>> &entries)
{
    Descriptor record = Descriptor::record();
    QVariantList userFields;
    for (const auto &[key, value] : entries) {
        if (key.typeId() == QMetaType::QString) {
            userFields << key << value;
        } else if (!objCType(key).isEmpty()) {
            record.setDescriptorForKeyword(aeDescriptorValue(value), FourCharCode(key.toInt()));
        }
    }
    if (!userFields.isEmpty())
        record.setDescriptorForKeyword(listOf(userFields), DescType::UserFields);
    return record;
}

Descriptor floatList(std::initializer_list<qreal> values)
{
    QVariantList numbers;
    for (qreal v : values)
        numbers.append(QVariant::fromValue(float(v)));
    return listOf(numbers);
}

// Structured values go as lists of numbers; a range as its start and end.
std::optional<Descriptor> structuredValue(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<TextRange>()) {
        const TextRange range = value.value<TextRange>();
        return listOf({QVariant::fromValue(uint(range.location)), QVariant::fromValue(uint(range.end()))});
    }
    switch (value.typeId()) {
    case QMetaType::QSizeF: {
        const QSizeF size = value.toSizeF();
        return floatList({size.width(), size.height()});
    }
    case QMetaType::QPointF: {
        const QPointF point = value.toPointF();
        return floatList({point.x(), point.y()});
    }
    case QMetaType::QRectF: {
        const QRectF rect = value.toRectF();
        return floatList({rect.x(), rect.y(), rect.x() + rect.width(), rect.y() + rect.height()});
    }
    default:
        return std::nullopt;
    }
}

// Geometric values of other layouts have no descriptor form.
QString unsupportedStructure(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QSize:
        return QStringLiteral("{QSize=ii}");
    case QMetaType::QPoint:
        return QStringLiteral("{QPoint=ii}");
    case QMetaType::QRect:
        return QStringLiteral("{QRect=iiii}");
    case QMetaType::QLine:
        return QStringLiteral("{QLine={QPoint=ii}{QPoint=ii}}");
    case QMetaType::QLineF:
        return QStringLiteral("{QLineF={QPointF=dd}{QPointF=dd}}");
    default:
        return QString();
    }
}

// What an object prints as, which is what an unknown object becomes.
QString description(const QVariant &value)
{
    if (value.typeId() == QMetaType::QByteArray) {
        const QByteArray hex = value.toByteArray().toHex();
        QString grouped;
        for (qsizetype i = 0; i < hex.size(); i += 8)
            grouped += (i ? QStringLiteral(" ") : QString()) + QString::fromLatin1(hex.mid(i, 8));
        return u'<' + grouped + u'>';
    }
    if (value.metaType().flags() & QMetaType::PointerToQObject) {
        const QObject *object = value.value<QObject *>();
        const QString name = object ? scriptClassName(*object) : QStringLiteral("nil");
        return QStringLiteral("<%1: 0x%2>").arg(name, QString::number(quintptr(object), 16));
    }
    return QStringLiteral("<%1>").arg(QString::fromLatin1(value.typeName()));
}

} // namespace

Descriptor aeDescriptorValue(const QVariant &object)
{
    if (!object.isValid() || object.typeId() == QMetaType::Nullptr)
        return Descriptor::null();
    if (object.metaType() == QMetaType::fromType<Descriptor>())
        return object.value<Descriptor>();
    if (!objCType(object).isEmpty())
        return numberDescriptor(object);
    switch (object.typeId()) {
    case QMetaType::QString:
        return Descriptor::string(object.toString());
    case QMetaType::QDateTime:
        return descriptorWithLongDateTime(LongDateTime::fromDate(object.toDateTime()));
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return listOf(object.toList());
    case QMetaType::QVariantMap: {
        const QVariantMap map = object.toMap();
        QList<std::pair<QVariant, QVariant>> entries;
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            entries.append({it.key(), it.value()});
        return recordOf(entries);
    }
    default:
        break;
    }
    if (object.metaType() == QMetaType::fromType<MixedKeyDictionary>())
        return recordOf(object.value<MixedKeyDictionary>().entries);
    if (const auto structured = structuredValue(object))
        return *structured;
    if (const QString encoding = unsupportedStructure(object); !encoding.isEmpty())
        throw NamedException(UnsupportedAEDescriptorConversion,
                             QStringLiteral("ScriptSubroutines: conversion of an NSNumber with type '%1' to an "
                                            "aeDescriptor is not supported.")
                                 .arg(encoding));
    return Descriptor::string(description(object));
}

QVariant objCObjectValue(const Descriptor &descriptor)
{
    if (const auto *converter = ConversionTable::shared().find(descriptor.descriptorType()))
        return (*converter)(descriptor);
    return QVariant::fromValue(descriptor);
}

QVariant arrayWithAEDesc(const Descriptor &descriptor)
{
    QVariantList items;
    if (const auto list = descriptor.coerceToDescriptorType(DescType::List))
        for (qsizetype i = 1; i <= list->numberOfItems(); ++i)
            items.append(objCObjectValue(*list->descriptorAtIndex(i)));
    return items;
}

QVariant dictionaryWithAEDesc(const Descriptor &descriptor)
{
    MixedKeyDictionary dictionary;
    const auto record = descriptor.coerceToDescriptorType(DescType::Record);
    for (qsizetype i = 1; record && i <= record->numberOfItems(); ++i) {
        const FourCharCode keyword = record->keywordForDescriptorAtIndex(i);
        const Descriptor item = *record->descriptorAtIndex(i);
        if (keyword == DescType::UserFields) {
            for (qsizetype k = 1; k <= item.numberOfItems(); k += 2)
                dictionary.setValue(objCObjectValue(*item.descriptorAtIndex(k)),
                                    item.descriptorAtIndex(k + 1) ? objCObjectValue(*item.descriptorAtIndex(k + 1))
                                                                  : QVariant());
        } else {
            dictionary.setValue(QVariant::fromValue(qint32(keyword)), objCObjectValue(item));
        }
    }
    // A record with only text keys is an ordinary string-keyed dictionary.
    QVariantMap map;
    for (const auto &[key, value] : dictionary.entries) {
        if (key.typeId() != QMetaType::QString)
            return QVariant::fromValue(dictionary);
        map.insert(key.toString(), value);
    }
    return map;
}

QVariant stringWithAEDesc(const Descriptor &descriptor)
{
    const QString text = descriptor.stringValue();
    return text.isNull() ? QVariant() : QVariant(text);
}

// An alias record here is the item's path bytes.
QVariant pathWithAlias(const Descriptor &descriptor)
{
    return PathCodec::decode(descriptor.data());
}

QVariant nullWithAEDesc(const Descriptor &)
{
    return QVariant::fromValue(nullptr);
}

QVariant dateWithAEDesc(const Descriptor &descriptor)
{
    return LongDateTime::toDate(longDateTimeValue(descriptor));
}

QString descriptorTypeName(FourCharCode type)
{
    static const QHash<FourCharCode, QString> names = {
        {fourCharCode("list"), "typeAEList"},      {fourCharCode("reco"), "typeAERecord"},
        {fourCharCode("aevt"), "typeAppleEvent"},  {fourCharCode("evrc"), "typeEventRecord"},
        {fourCharCode("true"), "typeTrue"},        {fourCharCode("fals"), "typeFalse"},
        {fourCharCode("alis"), "typeAlias"},       {fourCharCode("enum"), "typeEnumerated"},
        {fourCharCode("type"), "typeType"},        {fourCharCode("appa"), "typeAppParameters"},
        {fourCharCode("prop"), "typeProperty"},    {fourCharCode("fss "), "typeFSS"},
        {fourCharCode("fsrf"), "typeFSRef"},       {fourCharCode("furl"), "typeFileURL"},
        {fourCharCode("keyw"), "typeKeyword"},     {fourCharCode("sect"), "typeSectionH"},
        {fourCharCode("****"), "typeWildCard"},    {fourCharCode("sign"), "typeApplSignature"},
        {fourCharCode("qdrt"), "typeQDRectangle"}, {fourCharCode("fixd"), "typeFixed"},
        {fourCharCode("psn "), "typeProcessSerialNumber"}, {fourCharCode("aprl"), "typeApplicationURL"},
        {fourCharCode("null"), "typeNull"}};
    return names.value(type);
}

void logDescriptorType(const Descriptor &descriptor)
{
    const QString name = descriptorTypeName(descriptor.descriptorType());
    SystemLog::write(name.isNull() ? QStringLiteral("(null)") : name);
}

} // namespace ScriptCoertions

ConversionTable::ConversionTable()
{
    reset();
}

ConversionTable &ConversionTable::shared()
{
    static ConversionTable table;
    return table;
}

void ConversionTable::reset()
{
    using namespace ScriptCoertions;
    m_rows.clear();
    // 'TEXT' is listed twice; the second row replaces the first with the same.
    registerConversionSubroutine(&stringWithAEDesc, {fourCharCode("utxt"), fourCharCode("TEXT"), fourCharCode("utf8"),
                                                     fourCharCode("cstr"), fourCharCode("TEXT"), 0});
    registerConversionSubroutine(&numberWithAEDesc,
                                 {fourCharCode("bool"), fourCharCode("true"), fourCharCode("fals"), fourCharCode("shor"),
                                  fourCharCode("long"), fourCharCode("magn"), fourCharCode("comp"), fourCharCode("sing"),
                                  fourCharCode("doub"), fourCharCode("ldbl"), 0});
    registerConversionSubroutine(&arrayWithAEDesc, {fourCharCode("list"), 0});
    registerConversionSubroutine(&dictionaryWithAEDesc, {fourCharCode("reco"), 0});
    registerConversionSubroutine(&dateWithAEDesc, {fourCharCode("ldt "), 0});
    registerConversionSubroutine(&nullWithAEDesc, {fourCharCode("null"), 0});
    registerConversionSubroutine(&pathWithAlias, {fourCharCode("alis"), 0});
}

void ConversionTable::registerConversionSubroutine(const Converter &converter, const QList<FourCharCode> &types)
{
    if (types.isEmpty())
        return;
    const auto shared = std::make_shared<const Converter>(converter);
    m_rows.insert(types.first(), shared);
    for (qsizetype i = 1; i < types.size() && types[i] != 0; ++i)
        m_rows.insert(types[i], shared);
}

const ConversionTable::Converter *ConversionTable::find(FourCharCode type) const
{
    const auto row = m_rows.constFind(type);
    return row == m_rows.constEnd() ? nullptr : row.value().get();
}

namespace LongDateTime {

namespace {
constexpr qint64 secondsFrom1904To1970 = 2082844800;
}

// The wall-clock time the date shows here, counted as if it were UTC.
qint64 fromDate(const QDateTime &date)
{
    const QDateTime local = date.toLocalTime();
    return QDateTime(local.date(), local.time(), Qt::UTC).toSecsSinceEpoch() + secondsFrom1904To1970;
}

QDateTime toDate(qint64 seconds)
{
    const QDateTime wallClock = QDateTime::fromSecsSinceEpoch(seconds - secondsFrom1904To1970, Qt::UTC);
    return QDateTime(wallClock.date(), wallClock.time(), Qt::LocalTime);
}

} // namespace LongDateTime
