#include "NamedException.h"
#include "StringAdditions.h"
#include "TextScanner.h"

namespace StringAdditions {

namespace {

// The indexed-access rule: the comparison is unsigned 32-bit on purpose, so
// an empty list wraps its last index and then refuses the index as the
// collection does.
std::optional<QString> itemAtIndex(const QStringList &list, quint32 index)
{
    if (index == UINT32_MAX)
        return list.isEmpty() ? std::nullopt : std::optional(list.last());
    if (index > quint32(list.size()) - 1u)
        return std::nullopt;
    if (qsizetype(index) >= list.size())
        throw NamedException(NSRangeException,
                             QStringLiteral("*** -[NSMutableArray objectAtIndex:]: index %1 beyond bounds for "
                                            "empty array")
                                 .arg(index));
    return list.at(index);
}

bool isLineTerminator(QChar c)
{
    const char16_t u = c.unicode();
    return u == u'\n' || u == u'\r' || u == 0x85 || u == 0x2028 || u == 0x2029;
}

struct LineBounds {
    qsizetype end;         // past the terminator
    qsizetype contentsEnd; // before the terminator
};

// Bounds of the line that starts at `start`.
LineBounds lineFrom(const QString &text, qsizetype start)
{
    qsizetype i = start;
    while (i < text.size() && !isLineTerminator(text[i]))
        ++i;
    if (i == text.size())
        return {i, i};
    const bool crlf = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
    return {i + (crlf ? 2 : 1), i};
}

const CharacterSet &wordSeparators()
{
    static const CharacterSet set =
        CharacterSet::letters().united(CharacterSet::fromCharacters(QStringLiteral("-"))).inverted();
    return set;
}

} // namespace

QStringList characters(const QString &self)
{
    QStringList result;
    result.reserve(self.size());
    for (QChar c : self)
        result.append(QString(c));
    return result;
}

qsizetype characterCount(const QString &self)
{
    return self.size();
}

std::optional<QString> charAtIndex(const QString &self, quint32 index)
{
    return itemAtIndex(characters(self), index);
}

QString firstCharacter(const QString &self)
{
    if (self.size() < 2)
        return self;
    return *charAtIndex(self, 0);
}

QStringList words(const QString &self)
{
    return tokensSeparatedByCharactersFromSet(self, wordSeparators());
}

qsizetype wordCount(const QString &self)
{
    return words(self).size();
}

std::optional<QString> wordAtIndex(const QString &self, quint32 index)
{
    return itemAtIndex(words(self), index);
}

QStringList paragraphs(const QString &self)
{
    // A trailing terminator leaves one more, empty, paragraph: the contents
    // end of the last real line is still below the length.
    QStringList result;
    qsizetype position = 0;
    qsizetype contentsEnd = 0;
    while (contentsEnd < self.size()) {
        const LineBounds line = lineFrom(self, position);
        contentsEnd = line.contentsEnd;
        result.append(self.mid(position, contentsEnd - position));
        position = line.end;
    }
    return result;
}

qsizetype paragraphCount(const QString &self)
{
    return paragraphs(self).size();
}

std::optional<QString> paragraphAtIndex(const QString &self, quint32 index)
{
    return itemAtIndex(paragraphs(self), index);
}

QStringList tokensSeparatedByCharactersFromSet(const QString &self, const CharacterSet &separators)
{
    const CharacterSet tokenCharacters = separators.inverted();
    TextScanner scanner(self);
    scanner.setCharactersToBeSkipped(separators);
    QStringList tokens;
    QString token;
    while (!scanner.isAtEnd() && scanner.scanCharactersFromSet(tokenCharacters, &token))
        tokens.append(token);
    return tokens;
}

} // namespace StringAdditions
