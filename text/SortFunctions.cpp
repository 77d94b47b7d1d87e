#include "SortFunctions.h"

#include "StringAdditions.h"

#include <QCollator>
#include <QCoreApplication>
#include <QDateTime>
#include <unicode/ucol.h>
#include <thread>

namespace SortFunctions {

namespace {

QVariant operand(const QVariant &value, const QVariant &context)
{
    if (!context.isValid() || context.isNull())
        return value;
    return value.toMap().value(context.toString());
}

// One collator for the natural order, made once: numbers by value, strength
// secondary (case and width ignored, accents kept), punctuation not
// ignorable, canonical equivalents equal.
UCollator *naturalCollator()
{
    static UCollator *collator = [] {
        UErrorCode status = U_ZERO_ERROR;
        UCollator *made = ucol_open("", &status);
        ucol_setAttribute(made, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
        ucol_setAttribute(made, UCOL_STRENGTH, UCOL_SECONDARY, &status);
        ucol_setAttribute(made, UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &status);
        ucol_setAttribute(made, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
        return made;
    }();
    return collator;
}

int sign(int value)
{
    return (value > 0) - (value < 0);
}

} // namespace

namespace {

const QCollator &caseInsensitiveCollator()
{
    static const QCollator collator = [] {
        QCollator made(QLocale::system());
        made.setCaseSensitivity(Qt::CaseInsensitive);
        return made;
    }();
    return collator;
}

} // namespace

int localizedCaseInsensitiveCompare(const QString &a, const QString &b)
{
    return sign(caseInsensitiveCollator().compare(a, b));
}

QCollatorSortKey localizedCaseInsensitiveKey(const QString &text)
{
    return caseInsensitiveCollator().sortKey(text);
}

int stringAsNumberCompare(const QString &a, const QString &b)
{
    // The strings' own UTF-16 buffers go to the collator: nothing is copied
    // or allocated per comparison.
    return ucol_strcoll(naturalCollator(), reinterpret_cast<const UChar *>(a.utf16()), int32_t(a.size()),
                        reinterpret_cast<const UChar *>(b.utf16()), int32_t(b.size()));
}

namespace {

// Appends the key of `text` to `bytes`, without the closing zero byte.
void appendKey(const UCollator *collator, const QString &text, std::string &bytes)
{
    const auto *units = reinterpret_cast<const UChar *>(text.utf16());
    const size_t start = bytes.size();
    size_t room = size_t(text.size()) * 4 + 16;
    for (;;) {
        bytes.resize(start + room);
        const int32_t length = ucol_getSortKey(collator, units, int32_t(text.size()),
                                               reinterpret_cast<uint8_t *>(bytes.data() + start), int32_t(room));
        if (size_t(length) <= room) {
            bytes.resize(start + size_t(std::max(length - 1, 0)));
            return;
        }
        room = size_t(length);
    }
}

} // namespace

NaturalKeys::NaturalKeys(size_t count, const std::function<const QString &(size_t)> &textAt)
{
    // A collator may be used by one thread at a time: a helper works with a copy.
    const size_t parts = count >= 4096 ? 2 : 1;
    m_partSize = std::max<size_t>((count + parts - 1) / parts, 1);
    m_parts.resize(parts);
    const auto make = [&](size_t part, const UCollator *collator) {
        Part &made = m_parts[part];
        const size_t from = part * m_partSize;
        const size_t to = std::min(count, from + m_partSize);
        made.ends.reserve(to - from);
        made.bytes.reserve((to - from) * 24);
        for (size_t i = from; i < to; ++i) {
            appendKey(collator, textAt(i), made.bytes);
            made.ends.push_back(made.bytes.size());
        }
    };
    if (parts == 1) {
        make(0, naturalCollator());
        return;
    }
    UErrorCode status = U_ZERO_ERROR;
    UCollator *copy = ucol_clone(naturalCollator(), &status);
    if (U_FAILURE(status)) {
        ucol_close(copy);
        m_partSize = std::max<size_t>(count, 1);
        m_parts.resize(1);
        make(0, naturalCollator());
        return;
    }
    std::thread helper(make, 1, copy);
    make(0, naturalCollator());
    helper.join();
    ucol_close(copy);
}

std::string_view NaturalKeys::key(size_t index) const
{
    const Part &part = m_parts[index / m_partSize];
    const size_t at = index % m_partSize;
    const size_t start = at ? part.ends[at - 1] : 0;
    return std::string_view(part.bytes).substr(start, part.ends[at] - start);
}

QByteArray stringAsNumberKey(const QString &text)
{
    std::string key;
    appendKey(naturalCollator(), text, key);
    return QByteArray(key.data(), qsizetype(key.size()));
}

QStringList stripList()
{
    static const QStringList list = QCoreApplication::translate("ui", "TheStripList").split(u'|');
    return list;
}

int stringSort(const QVariant &a, const QVariant &b, const QVariant &)
{
    return localizedCaseInsensitiveCompare(a.toString(), b.toString());
}

int cleanedStringSort(const QVariant &a, const QVariant &b, const QVariant &context)
{
    QString left = operand(a, context).toString();
    QString right = operand(b, context).toString();
    for (const QString &word : stripList()) {
        left = StringAdditions::deprefixCaseInsensitive(left, word);
        right = StringAdditions::deprefixCaseInsensitive(right, word);
    }
    return localizedCaseInsensitiveCompare(left, right);
}

int dateSort(const QVariant &a, const QVariant &b, const QVariant &context)
{
    const QPartialOrdering order = QVariant::compare(operand(a, context), operand(b, context));
    return order == QPartialOrdering::Less ? -1 : order == QPartialOrdering::Greater ? 1 : 0;
}

int numericSort(const QVariant &a, const QVariant &b, const QVariant &context)
{
    return dateSort(a, b, context);
}

int stringAsNumberSort(const QVariant &a, const QVariant &b, const QVariant &)
{
    return stringAsNumberCompare(a.toString(), b.toString());
}

} // namespace SortFunctions

int StringAdditions::stringAsNumberSort(const QString &self, const QString &other)
{
    return SortFunctions::stringAsNumberCompare(self, other);
}
