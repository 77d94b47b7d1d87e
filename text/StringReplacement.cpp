#include "NamedException.h"
#include "StringAdditions.h"

namespace StringAdditions {

QString snr(const QString &self, const QString &search, const QString &replacement)
{
    // An empty search string occurs nowhere; QString would insert between
    // every character instead.
    if (isBlankString(self) || search.isEmpty())
        return self;
    QString result = self;
    return result.replace(search, replacement, Qt::CaseSensitive);
}

QString snrBatch(const QString &self, const QStringList &search, const QStringList &replacement)
{
    if (isBlankString(self))
        return self;
    QString result = self;
    for (qsizetype i = 0; i < search.size(); ++i) {
        if (i >= replacement.size())
            throw arrayIndexBeyondBounds(i, replacement.size());
        result = snr(result, search[i], replacement[i]);
    }
    return result;
}

bool containsString(const QString &self, const QString &search, bool consideringCase)
{
    return !search.isEmpty() && self.contains(search, consideringCase ? Qt::CaseSensitive : Qt::CaseInsensitive);
}

QString substringToDelim(const QString &self, const QString &delimiter)
{
    const qsizetype at = delimiter.isEmpty() ? -1 : self.indexOf(delimiter);
    return at < 0 ? self : self.left(at);
}

QString substringFromDelim(const QString &self, const QString &start, const QString &end)
{
    const qsizetype from = start.isEmpty() ? -1 : self.indexOf(start);
    if (from < 0)
        return self;
    return substringToDelim(self.mid(from + start.size()), end);
}

} // namespace StringAdditions
