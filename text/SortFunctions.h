#pragma once

#include <QCollatorSortKey>
#include <QString>
#include <QVariant>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Comparison functions for sorting lists of strings and of item records.
// Each answers negative, zero or positive for ascending, same, descending.
// Where a context is used it is a dictionary key, and the operands are
// dictionaries whose values for that key are compared.
namespace SortFunctions {

int stringSort(const QVariant &a, const QVariant &b, const QVariant &context = {});
// Words of the "ui" table's "TheStripList" are removed from the front of
// both names, in list order, before they are compared.
int cleanedStringSort(const QVariant &a, const QVariant &b, const QVariant &context = {});
int dateSort(const QVariant &a, const QVariant &b, const QVariant &context);
int numericSort(const QVariant &a, const QVariant &b, const QVariant &context);
// Natural order: digits compare as numbers, case and width are ignored,
// punctuation and accents count.
int stringAsNumberSort(const QVariant &a, const QVariant &b, const QVariant &context = {});

int localizedCaseInsensitiveCompare(const QString &a, const QString &b);
// Keys that compare as localizedCaseInsensitiveCompare compares their
// strings, for sorting long lists with one key made per string.
QCollatorSortKey localizedCaseInsensitiveKey(const QString &text);
int stringAsNumberCompare(const QString &a, const QString &b);
// The natural order as bytes: two keys compare (as bytes) as their strings
// do under stringAsNumberCompare, so a long list is sorted with one key
// made per string instead of the collator called per comparison.
QByteArray stringAsNumberKey(const QString &text);

// The natural-order keys of a long list of strings, made once each into a
// few flat buffers (on two threads when the list is long): key(a) and
// key(b) compare as bytes as the strings do under stringAsNumberCompare.
class NaturalKeys {
public:
    NaturalKeys(size_t count, const std::function<const QString &(size_t)> &textAt);
    std::string_view key(size_t index) const;

private:
    struct Part {
        std::string bytes;
        std::vector<size_t> ends; // where each key of the part ends in `bytes`
    };
    size_t m_partSize = 1;
    std::vector<Part> m_parts;
};

QStringList stripList();

} // namespace SortFunctions

namespace StringAdditions {
int stringAsNumberSort(const QString &self, const QString &other);
}
