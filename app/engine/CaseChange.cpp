#include "CaseChange.h"

#include "CharacterSet.h"

namespace CaseChange {

namespace {

QString firstUpperRestLower(const QString &word)
{
    if (word.isEmpty())
        return word;
    return word.left(1).toUpper() + word.mid(1).toLower();
}

QString sentenceCase(const QString &text, const QStringList &endings)
{
    // An empty text has no first letter to raise.
    if (text.isEmpty())
        return text;
    QStringList words = firstUpperRestLower(text).split(u' ');
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
    QString result;
    result.reserve(text.size());
    bool atWordStart = true;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (CharacterSet::whitespaceAndNewlines().contains(c)) {
            result += c;
            atWordStart = true;
        } else {
            result += atWordStart ? QString(c).toUpper() : QString(c).toLower();
            atWordStart = false;
        }
    }
    return result;
}

QString changeCase(const QString &text, const QString &theCase, const QStringList &sentenceEndings)
{
    if (theCase == QLatin1String("UPPERCASE"))
        return text.toUpper();
    if (theCase == QLatin1String("lowercase"))
        return text.toLower();
    if (theCase == QLatin1String("Title Case"))
        return capitalized(text);
    if (theCase == QLatin1String("Sentence case"))
        return sentenceCase(text, sentenceEndings);
    return text;
}

} // namespace CaseChange
