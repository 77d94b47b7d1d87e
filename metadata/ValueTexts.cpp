#include "ValueTexts.h"

#include <QStringList>
#include <QStringDecoder>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace ValueTexts {

namespace {

// A number with at most one decimal, a trailing ".0" left out; rounded as
// C's printf rounds (4.25 is "4.2"), as photographers' tools print it.
QString oneDecimal(double value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.1f", value);
    QString text = QString::fromLatin1(buffer);
    if (text.endsWith(QLatin1String(".0")))
        text.chop(2);
    return text;
}

// The leading number of "1/12" or " 3 ", or "" when there is none.
QString leadingNumber(const QString &text)
{
    const QString trimmed = text.trimmed();
    qsizetype end = 0;
    while (end < trimmed.size() && trimmed[end].isDigit())
        ++end;
    return trimmed.left(end);
}

bool isWordCharacter(QChar c)
{
    return c.isLetterOrNumber();
}

// Whether `word` stands in `text` as a whole word, whatever its case.
bool holdsWord(const QString &text, const QString &word)
{
    for (qsizetype at = 0; (at = text.indexOf(word, at, Qt::CaseInsensitive)) >= 0; ++at) {
        const qsizetype end = at + word.size();
        if ((at == 0 || !isWordCharacter(text[at - 1])) && (end == text.size() || !isWordCharacter(text[end])))
            return true;
    }
    return false;
}

} // namespace

QString decoded(const char *bytes, size_t size)
{
    const size_t length = bytes ? strnlen(bytes, size) : 0;
    const QByteArrayView view(bytes, qsizetype(length));
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(view);
    if (utf8.hasError())
        text = QString::fromLatin1(view);
    return text.trimmed();
}

QString camera(const QString &make, const QString &model)
{
    const QString theModel = model.simplified();
    QString spaced = make;
    spaced.replace(u',', u' ');
    QStringList words = spaced.simplified().split(u' ', Qt::SkipEmptyParts);
    // Words that say what kind of company it is, not who.
    static const QStringList corporate = {"corporation", "corp", "company", "co", "ltd", "limited", "inc",
                                          "imaging",     "optical", "gmbh", "ag",  "kk"};
    while (words.size() > 1) {
        QString last = words.last().toLower();
        last.remove(u'.');
        if (!corporate.contains(last))
            break;
        words.removeLast();
    }
    const QString maker = words.join(u' ');
    if (theModel.isEmpty() || maker.isEmpty())
        return theModel.isEmpty() ? maker : theModel;
    for (const QString &word : words)
        if (holdsWord(theModel, word))
            return theModel;
    return maker + u' ' + theModel;
}

QString aperture(double fNumber)
{
    return fNumber > 0 && std::isfinite(fNumber) ? QStringLiteral("f") + oneDecimal(fNumber) : QString();
}

QString exposure(double seconds)
{
    if (!(seconds > 0) || !std::isfinite(seconds))
        return QString();
    // A fraction of a second reads as one over a whole number.
    if (seconds < 0.25001)
        return QStringLiteral("1/") + QString::number(qint64(0.5 + 1 / seconds));
    return oneDecimal(seconds);
}

QString focalLength(double mm)
{
    return mm > 0 && std::isfinite(mm) ? oneDecimal(mm) + QStringLiteral("mm") : QString();
}

QString duration(qint64 milliseconds)
{
    if (milliseconds < 0)
        return QString();
    const qint64 seconds = milliseconds / 1000;
    const QString minutesAndSeconds = QStringLiteral("%1.%2").arg(seconds / 60 % 60, seconds >= 3600 ? 2 : 1, 10, QLatin1Char('0'))
                                          .arg(seconds % 60, 2, 10, QLatin1Char('0'));
    return seconds >= 3600 ? QString::number(seconds / 3600) + u'.' + minutesAndSeconds : minutesAndSeconds;
}

QString track(const QString &text)
{
    const QString number = leadingNumber(text);
    if (number.isEmpty())
        return text.trimmed();
    const QString plain = QString::number(number.toLongLong());
    return plain.size() < 2 ? plain.rightJustified(2, u'0') : plain;
}

QString disc(const QString &text)
{
    const QString number = leadingNumber(text);
    return number.isEmpty() ? text.trimmed() : QString::number(number.toLongLong());
}

QString year(const QString &text)
{
    for (qsizetype at = 0; at + 4 <= text.size(); ++at) {
        qsizetype digits = 0;
        while (digits < 4 && text[at + digits].isDigit())
            ++digits;
        const bool alone = at + 4 == text.size() || !text[at + 4].isDigit();
        if (digits == 4 && alone && text.mid(at, 4).toInt() > 0)
            return text.mid(at, 4);
        at += digits;
    }
    return QString();
}

QString forName(QStringView value)
{
    QString text;
    text.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value[i];
        if (c == u'/') {
            text += u'_';
        } else if (c.isHighSurrogate() && i + 1 < value.size() && value[i + 1].isLowSurrogate()) {
            text += c;
            text += value[++i];
        } else if (c.category() != QChar::Other_Control && !c.isSurrogate()) {
            text += c;
        }
    }
    return text.trimmed();
}

} // namespace ValueTexts
