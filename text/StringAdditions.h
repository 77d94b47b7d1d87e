#pragma once

#include "CharacterSet.h"
#include "ErrorInfo.h"
#include "TextRange.h"

#include <QString>
#include <QStringList>
#include <QVariant>
#include <optional>

// String operations the rename engine and the main script apply to names.
// Each takes the receiver first and returns a new value; none changes its
// arguments. A character is one UTF-16 code unit throughout. Most operations
// answer a blank (zero-length) receiver with the receiver itself.
namespace StringAdditions {

// Shared character sets.
const CharacterSet &allWhitespaceCharacterSet(); // " \t\n\r\v\f"
const CharacterSet &newlineCharacterSet();       // "\n\r"

// Case, cleaning and trimming.
void log(const QString &self);
bool isBlankString(const QString &self);
QString reverse(const QString &self);
QString titleCaseString(const QString &self);
QString stripDiacritical(const QString &self);
QString clean(const QString &self, const QString &allowed);
QString cleanWithReplace(const QString &self, const QStringList &set, const QString &replacement);
QString trimFromStart(const QString &self, const QStringList &set);
QString trimFromEnd(const QString &self, const QStringList &set);
QString trimFromBoth(const QString &self, const QStringList &set);
bool hasCaseInsensitivePrefix(const QString &self, const QString &prefix);
bool hasCaseInsensitiveSuffix(const QString &self, const QString &suffix);
QString deprefix(const QString &self, const QString &prefix);
QString desuffix(const QString &self, const QString &suffix);
QString deprefixCaseInsensitive(const QString &self, const QString &prefix);
QString desuffixCaseInsensitive(const QString &self, const QString &suffix);

// Splitting into characters, words and paragraphs. The indexed forms take an
// unsigned 32-bit index: all bits set means the last item; past the end, nil.
// An empty list refuses every other index with NSRangeException.
QStringList characters(const QString &self);
qsizetype characterCount(const QString &self);
std::optional<QString> charAtIndex(const QString &self, quint32 index);
QString firstCharacter(const QString &self);
QStringList words(const QString &self);
qsizetype wordCount(const QString &self);
std::optional<QString> wordAtIndex(const QString &self, quint32 index);
QStringList paragraphs(const QString &self);
qsizetype paragraphCount(const QString &self);
std::optional<QString> paragraphAtIndex(const QString &self, quint32 index);
QStringList tokensSeparatedByCharactersFromSet(const QString &self, const CharacterSet &separators);

// Literal search and replace.
QString snr(const QString &self, const QString &search, const QString &replacement);
QString snrBatch(const QString &self, const QStringList &search, const QStringList &replacement);
bool containsString(const QString &self, const QString &search, bool consideringCase);
QString substringToDelim(const QString &self, const QString &delimiter);
QString substringFromDelim(const QString &self, const QString &start, const QString &end);

// Regular expressions. Options are numbered REG_EXTENDED 1, REG_ICASE 2,
// REG_NOSUB 4, REG_NEWLINE 8; extended syntax is always on.
namespace RegexOption {
constexpr int Extended = 1;
constexpr int IgnoreCase = 2;
constexpr int NoSubexpressions = 4;
constexpr int Newline = 8;
} // namespace RegexOption

inline const QString RegexErrorDomain = QStringLiteral("regerror");

bool validateWithRegEx(const QString &self, const QString &pattern);
bool grep(const QString &self, const QString &pattern, int options);
std::optional<QStringList> substringsMatchingRegularExpression(const QString &self, const QString &pattern,
                                                               int count, int options,
                                                               QList<TextRange> *ranges,
                                                               std::optional<ErrorInfo> *error);

// Escaping and encoding for the places text is handed on to: a shell word
// inside a script string, a quoted script string, a web request, XML,
// hexadecimal; and reading percent escapes, URL text and hex back.
QString quotedForm(const QString &self);
QString addQuoteEscapes(const QString &self);
QString removeQuoteEscapes(const QString &self);
QString addPercentEscapes(const QString &self);
QString prepForURL(const QString &self);
std::optional<QString> removePercentEscapes(const QString &self); // nullopt: malformed, or not UTF-8
QString decodeURLString(const QString &self);
QString safeForXML(const QString &self);
QString convertToHex(const QString &self);
QString convertFromHex(const QString &self);
bool isValidURL(const QString &self);
QString uuidString();

// Shaping by characters: wrapping to a line length, cutting to a count,
// ordinals, plurals and a checksum.
QString wrapToLength(const QString &self, quint32 length);
QString truncateStringToMaxCharacters(const QString &self, qint32 count);
QString ordinalStringForInt(qint32 n);
QVariant pluralStringForCount(qint32 count, const QVariant &zero, const QVariant &singular, const QVariant &plural);
quint32 checksum(const QString &self);

} // namespace StringAdditions
