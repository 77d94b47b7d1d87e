#include "Collections.h"

#include "DictionaryAdditions.h"
#include "NamedException.h"
#include "SortFunctions.h"
#include "StringAdditions.h"

#include <QCoreApplication>
#include <algorithm>
#include <vector>
#include <cstdlib>

namespace Collections {

namespace {

using Comparison = int (*)(const QVariant &, const QVariant &, const QVariant &);

// Equal elements keep their order, so a sort by one key after another is
// a sort by both.
QVariantList sorted(QVariantList list, Comparison compare, const QVariant &context = {})
{
    std::stable_sort(list.begin(), list.end(),
                     [&](const QVariant &a, const QVariant &b) { return compare(a, b, context) < 0; });
    return list;
}

template <typename Keep>
QVariantList filtered(const QVariantList &dictionaries, Keep keep)
{
    QVariantList kept;
    for (const QVariant &dictionary : dictionaries)
        if (keep(dictionary.toMap()))
            kept.append(dictionary);
    return kept;
}

// A number's text as a script reads it back: booleans as 1 and 0.
QString stringValueOf(const QVariant &value, qsizetype position)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    if (value.typeId() == QMetaType::QString || DictionaryAdditions::isNumber(value))
        return value.toString();
    throw NamedException(NSInvalidArgumentException,
                         QStringLiteral("uisR:replaceWith: value %1 is a %2, not a string or a number")
                             .arg(position)
                             .arg(QString::fromLatin1(value.metaType().name())));
}

} // namespace

qint32 randomLongFrom(qint32 low, qint32 high)
{
    const float span = float(high) - float(low) + 1.0f;
    const auto drawn = qint32(float(::random()) * 4.656613e-10f * span + float(low));
    return drawn > high ? high : drawn;
}

int returnKeyValueIndex(const QVariantList &array, const QVariant &object)
{
    return int(array.indexOf(object)) + 1;
}

QVariantList reverseArray(const QVariantList &array)
{
    return QVariantList(array.crbegin(), array.crend());
}

QVariantList sortArray(const QVariantList &array)
{
    return sorted(array, &SortFunctions::stringSort);
}

QVariantList sortArrayWithStringsAsNumbers(const QVariantList &array)
{
    return sorted(array, &SortFunctions::stringAsNumberSort);
}

QVariantList sortArrayWithCleanedStringSort(const QVariantList &array)
{
    return sorted(array, &SortFunctions::cleanedStringSort);
}

QVariantList sortArrayRemovingDuplicates(const QVariantList &array)
{
    QVariantList unique;
    for (const QVariant &object : sortArray(array))
        if (!unique.contains(object))
            unique.append(object);
    return unique;
}

QVariantList batchReturnArrayObject(const QVariantList &arrays, qint32 index)
{
    QVariantList objects;
    objects.reserve(arrays.size());
    for (const QVariant &inner : arrays) {
        const QVariantList array = inner.toList();
        if (index < 0 || index >= array.size())
            throw arrayIndexBeyondBounds(index, array.size());
        objects.append(array.at(index));
    }
    return objects;
}

QVariant returnSomeObjectOfArray(const QVariantList &array)
{
    const qint32 index = randomLongFrom(0, qint32(array.size()) - 1);
    if (index < 0 || index >= array.size())
        throw arrayIndexBeyondBounds(index, array.size());
    return array.at(index);
}

QVariantList sortDictionaries(const QVariantList &dictionaries, const QStringList &keys)
{
    // One collation key per value, made once, instead of a collation per
    // comparison.
    struct Row {
        qsizetype index;
        std::vector<QCollatorSortKey> keys;
    };
    std::vector<Row> rows;
    rows.reserve(size_t(dictionaries.size()));
    for (qsizetype i = 0; i < dictionaries.size(); ++i) {
        const QVariantMap dictionary = dictionaries[i].toMap();
        Row row{i, {}};
        row.keys.reserve(size_t(keys.size()));
        for (const QString &key : keys)
            row.keys.push_back(SortFunctions::localizedCaseInsensitiveKey(dictionary.value(key).toString()));
        rows.push_back(std::move(row));
    }
    std::stable_sort(rows.begin(), rows.end(), [](const Row &a, const Row &b) {
        for (size_t k = 0; k < a.keys.size(); ++k)
            if (const int order = a.keys[k].compare(b.keys[k]))
                return order < 0;
        return false;
    });
    QVariantList list;
    list.reserve(dictionaries.size());
    for (const Row &row : rows)
        list.append(dictionaries[row.index]);
    return list;
}

QVariantList sortDictionariesByCleanedString(const QVariantList &dictionaries, const QString &key)
{
    return sorted(dictionaries, &SortFunctions::cleanedStringSort, key);
}

QVariantList sortDictionariesByDate(const QVariantList &dictionaries, const QString &key)
{
    return sorted(dictionaries, &SortFunctions::dateSort, key);
}

QVariantList sortDictionariesByNumber(const QVariantList &dictionaries, const QString &key)
{
    return sorted(dictionaries, &SortFunctions::numericSort, key);
}

QVariantList batchReturnDictionaryObject(const QVariantList &dictionaries, const QString &key)
{
    QVariantList values;
    values.reserve(dictionaries.size());
    for (const QVariant &dictionary : dictionaries) {
        const QVariant value = dictionary.toMap().value(key);
        values.append(value); // a missing value crosses as null
    }
    return values;
}

bool collectionContains(const QVariant &collection, const QVariant &object)
{
    if (collection.typeId() == QMetaType::QVariantMap)
        return collection.toMap().values().contains(object);
    if (collection.canConvert<QVariantList>() && collection.typeId() != QMetaType::QString)
        return collection.toList().contains(object);
    return false;
}

QVariantList batchReturnDictionariesWhoseArrayContains(const QVariantList &dictionaries, const QVariant &object,
                                                       const QString &key)
{
    return filtered(dictionaries, [&](const QVariantMap &d) { return collectionContains(d.value(key), object); });
}

QVariantList batchReturnDictionariesContainedIn(const QVariantList &dictionaries, const QVariant &collection,
                                                const QString &key)
{
    return filtered(dictionaries, [&](const QVariantMap &d) { return collectionContains(collection, d.value(key)); });
}

QVariantList batchReturnDictionariesNotContainedIn(const QVariantList &dictionaries, const QVariant &collection,
                                                   const QString &key)
{
    return filtered(dictionaries, [&](const QVariantMap &d) { return !collectionContains(collection, d.value(key)); });
}

QVariantList batchReturnDictionariesWithObject(const QVariantList &dictionaries, const QVariant &object,
                                               const QString &key)
{
    return filtered(dictionaries, [&](const QVariantMap &d) {
        const QVariant value = d.value(key);
        return value.isValid() && value == object;
    });
}

QStringList batchCleanString(const QStringList &strings, const QString &allowed)
{
    QStringList cleaned;
    cleaned.reserve(strings.size());
    for (const QString &text : strings)
        cleaned.append(StringAdditions::clean(text, allowed));
    return cleaned;
}

QString uis(const QString &key)
{
    return QCoreApplication::translate("ui", key.toUtf8().constData());
}

QString uisR(const QString &key, const QVariantList &values)
{
    QString text = uis(key);
    for (qsizetype i = 1; i <= values.size(); ++i)
        text = StringAdditions::snr(text, u'%' + QString::number(i), stringValueOf(values[i - 1], i));
    return text;
}

} // namespace Collections
