#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

// Whole-list work the main script asks for by name: sorting, filtering and
// projecting lists and lists of dictionaries, and "ui" table look-ups with
// numbered placeholders. Every function answers a new list and leaves its
// arguments as they were; filters keep the input's order.
namespace Collections {

// A whole number from low to high drawn from the C library's generator,
// in single precision as callers have always relied on; never seeded here.
qint32 randomLongFrom(qint32 low, qint32 high);

// 1-based position of the first equal object, 0 when absent.
int returnKeyValueIndex(const QVariantList &array, const QVariant &object);
QVariantList reverseArray(const QVariantList &array);
QVariantList sortArray(const QVariantList &array);
QVariantList sortArrayWithStringsAsNumbers(const QVariantList &array);
QVariantList sortArrayWithCleanedStringSort(const QVariantList &array);
QVariantList sortArrayRemovingDuplicates(const QVariantList &array);
// Item `index` of each inner list; a short inner list is a range fault.
QVariantList batchReturnArrayObject(const QVariantList &arrays, qint32 index);
// An empty list is a range fault.
QVariant returnSomeObjectOfArray(const QVariantList &array);

QVariantList sortDictionaries(const QVariantList &dictionaries, const QStringList &keys);
QVariantList sortDictionariesByCleanedString(const QVariantList &dictionaries, const QString &key);
QVariantList sortDictionariesByDate(const QVariantList &dictionaries, const QString &key);
QVariantList sortDictionariesByNumber(const QVariantList &dictionaries, const QString &key);
// Each dictionary's value for the key, null where it has none.
QVariantList batchReturnDictionaryObject(const QVariantList &dictionaries, const QString &key);
QVariantList batchReturnDictionariesWhoseArrayContains(const QVariantList &dictionaries, const QVariant &object,
                                                       const QString &key);
QVariantList batchReturnDictionariesContainedIn(const QVariantList &dictionaries, const QVariant &collection,
                                                const QString &key);
QVariantList batchReturnDictionariesNotContainedIn(const QVariantList &dictionaries, const QVariant &collection,
                                                   const QString &key);
QVariantList batchReturnDictionariesWithObject(const QVariantList &dictionaries, const QVariant &object,
                                               const QString &key);

QStringList batchCleanString(const QStringList &strings, const QString &allowed);

// The "ui" table's string for the key, or the key itself.
QString uis(const QString &key);
// uis: with "%1", "%2", ... replaced by the values in rising order, as
// plain text: with ten values "%1" also replaces the start of "%10".
QString uisR(const QString &key, const QVariantList &values);

// Whether a collection (a list, or a dictionary's values) holds the object.
bool collectionContains(const QVariant &collection, const QVariant &object);

} // namespace Collections
