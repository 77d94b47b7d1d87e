#include "StringAdditions.h"
#include "SystemLog.h"
#include "TextScanner.h"

#include <algorithm>
#include <array>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace StringAdditions {

namespace {

// The trailing space belongs to the list: it is what makes " Yet " a search.
const QString smallWordList = QStringLiteral(
    "A | An | And | As | At | Both | But | By | Either | For | From | In | Is | Neither | Nor | Of | On | Or | "
    "So | The | To | With | Yet ");

QString capitalized(const QString &word)
{
    if (word.size() < 2)
        return word.toUpper();
    return firstCharacter(word).toUpper() + word.mid(1);
}

} // namespace

const CharacterSet &allWhitespaceCharacterSet()
{
    static const CharacterSet set = CharacterSet::fromCharacters(QStringLiteral(" \t\n\r\013\014"));
    return set;
}

const CharacterSet &newlineCharacterSet()
{
    static const CharacterSet set = CharacterSet::fromCharacters(QStringLiteral("\n\r"));
    return set;
}

void log(const QString &self)
{
    // The receiver is the format on purpose, so directives in it are read.
    SystemLog::write(SystemLog::formatWithoutArguments(self));
}

bool isBlankString(const QString &self)
{
    return self.isEmpty();
}

QString reverse(const QString &self)
{
    QString reversed = self;
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

QString titleCaseString(const QString &self)
{
    if (isBlankString(self))
        return self;
    TextScanner scanner(self);
    QString result;
    while (!scanner.isAtEnd()) {
        QString word;
        if (scanner.scanUpToCharactersFromSet(allWhitespaceCharacterSet(), &word))
            result += capitalized(word);
        const qsizetype location = scanner.scanLocation();
        if (location < self.size()) {
            result += self[location];
            scanner.setScanLocation(location + 1);
        }
    }
    static const QStringList search = smallWordList.split(u'|');
    static const QStringList lowered = smallWordList.toLower().split(u'|');
    return snrBatch(result, search, lowered);
}

namespace {

// Decomposes and drops the marks: the rule itself. ICU's decomposition
// and character classes, so every script is read by one Unicode version.
QString withoutMarks(const QString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *nfd = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status))
        return text;
    const icu::UnicodeString decomposed =
        nfd->normalize(icu::UnicodeString(reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size())), status);
    if (U_FAILURE(status))
        return text;
    QString result;
    result.reserve(decomposed.length());
    for (int32_t i = 0; i < decomposed.length();) {
        const UChar32 c = decomposed.char32At(i);
        const int32_t length = U16_LENGTH(c);
        // A lone surrogate is a byte of a name that is not UTF-8: kept.
        const bool mark = (U_GET_GC_MASK(c) & U_GC_M_MASK) != 0;
        if (!mark)
            result.append(QStringView(reinterpret_cast<const QChar *>(decomposed.getBuffer()) + i, length));
        i += length;
    }
    return result;
}

} // namespace

QString stripDiacritical(const QString &self)
{
    if (isBlankString(self))
        return self;
    // Latin-1 holds no combining marks, so such a name is stripped one
    // character at a time, each as the rule strips it alone: most names,
    // without normalizing.
    constexpr char16_t notOneCharacter = 0xFFFF;
    static const std::array<char16_t, 256> latin1 = [] {
        std::array<char16_t, 256> table;
        for (char16_t c = 0; c < 256; ++c) {
            const QString stripped = withoutMarks(QString(QChar(c)));
            table[c] = stripped.size() == 1 ? stripped[0].unicode() : notOneCharacter;
        }
        return table;
    }();
    auto fast = [](QChar c) { return c.unicode() < 256 && latin1[c.unicode()] != notOneCharacter; };
    if (!std::all_of(self.cbegin(), self.cend(), fast))
        return withoutMarks(self);
    QString result = self;
    for (QChar &c : result)
        c = QChar(latin1[c.unicode()]);
    return result;
}

bool hasCaseInsensitivePrefix(const QString &self, const QString &prefix)
{
    return !prefix.isEmpty() && self.toLower().startsWith(prefix.toLower());
}

bool hasCaseInsensitiveSuffix(const QString &self, const QString &suffix)
{
    return !suffix.isEmpty() && self.toLower().endsWith(suffix.toLower());
}

} // namespace StringAdditions
