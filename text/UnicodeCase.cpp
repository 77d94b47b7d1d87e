#include "UnicodeCase.h"

#include <algorithm>

#include <unicode/locid.h>
#include <unicode/stringoptions.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

namespace UnicodeCase {

namespace {

icu::UnicodeString toIcu(const QString &text)
{
    return icu::UnicodeString(reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()));
}

QString fromIcu(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

bool isAscii(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x80; });
}

// Units of the first code point: two for a surrogate pair.
qsizetype firstLength(const QString &text)
{
    return text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate() ? 2 : 1;
}

} // namespace

QString upper(const QString &text)
{
    // ASCII has one mapping per letter and no context: Qt's is as right and faster.
    if (isAscii(text))
        return text.toUpper();
    return fromIcu(toIcu(text).toUpper(icu::Locale::getRoot()));
}

QString lower(const QString &text)
{
    if (isAscii(text))
        return text.toLower();
    return fromIcu(toIcu(text).toLower(icu::Locale::getRoot()));
}

QString capitalized(const QString &word)
{
    if (word.isEmpty())
        return word;
    if (isAscii(word))
        return word.left(1).toUpper() + word.mid(1).toLower();
    // The whole word is one segment whose first character is titled as it
    // stands, even when it is not a letter ("(hello" stays "(hello").
    return fromIcu(toIcu(word).toTitle(nullptr, icu::Locale::getRoot(),
                                       U_TITLECASE_WHOLE_STRING | U_TITLECASE_NO_BREAK_ADJUSTMENT));
}

QString upperFirst(const QString &text)
{
    if (text.isEmpty())
        return text;
    const qsizetype first = firstLength(text);
    // The rest is lowered in the context of the whole text, so a final
    // sigma is told by what stands before it.
    const QString head = text.left(first);
    const QString lowered = lower(text);
    return upper(head) + lowered.mid(lower(head).size());
}

} // namespace UnicodeCase
