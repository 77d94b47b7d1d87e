#include "CaseChange.h"

#include "CharacterSet.h"
#include "UnicodeCase.h"

namespace CaseChange {

namespace {

QString sentenceCase(const QString &text, const QStringList &endings)
{
    // An empty text has no first letter to raise.
    if (text.isEmpty())
        return text;
    QStringList words = UnicodeCase::upperFirst(text).split(u' ');
    for (qsizetype i = 0; i + 1 < words.size(); ++i) {
        for (const QString &ending : endings) {
            if (!ending.isEmpty() && words[i].endsWith(ending)) {
                words[i + 1] = capitalized(words[i + 1]);
                break;
            }
        }
    }
    return words.join(u' ');
}

} // namespace

QString capitalized(const QString &text)
{
    // Word by word: the first letter raised as a title (which may make two,
    // as ß does), the rest of the word lowered in one go.
    const CharacterSet &space = CharacterSet::whitespaceAndNewlines();
    QString result;
    result.reserve(text.size());
    qsizetype i = 0;
    while (i < text.size()) {
        if (space.contains(text[i])) {
            result += text[i++];
            continue;
        }
        qsizetype end = i + 1;
        while (end < text.size() && !space.contains(text[end]))
            ++end;
        result += UnicodeCase::capitalized(text.mid(i, end - i));
        i = end;
    }
    return result;
}

QString changeCase(const QString &text, RenameRule::Case theCase, const QStringList &sentenceEndings)
{
    switch (theCase) {
    case RenameRule::Case::Upper:
        return UnicodeCase::upper(text);
    case RenameRule::Case::Lower:
        return UnicodeCase::lower(text);
    case RenameRule::Case::Title:
        return capitalized(text);
    case RenameRule::Case::Sentence:
        return sentenceCase(text, sentenceEndings);
    }
    return text;
}

} // namespace CaseChange
