#include "StringAdditions.h"
#include "TextScanner.h"

#include <QSet>

namespace StringAdditions {

namespace {

// Set arguments are collections of one-character strings; a code unit is a
// member when its one-character string is in the collection.
class MemberTest {
public:
    explicit MemberTest(const QStringList &members)
    {
        for (const QString &member : members)
            if (member.size() == 1)
                m_units.insert(member[0].unicode());
    }
    bool operator()(QChar c) const { return m_units.contains(c.unicode()); }

private:
    QSet<char16_t> m_units;
};

// Prefix and suffix tests answer NO for an empty string.
bool hasPrefix(const QString &self, const QString &prefix)
{
    return !prefix.isEmpty() && self.startsWith(prefix);
}

bool hasSuffix(const QString &self, const QString &suffix)
{
    return !suffix.isEmpty() && self.endsWith(suffix);
}

} // namespace

QString clean(const QString &self, const QString &allowed)
{
    if (isBlankString(self))
        return self;
    // The scanner's default skipping stays on: white space at the start or
    // right after a removed character goes even when it is allowed.
    const CharacterSet allowedSet = CharacterSet::fromCharacters(allowed);
    TextScanner scanner(self);
    QString result;
    while (!scanner.isAtEnd()) {
        QString run;
        if (scanner.scanCharactersFromSet(allowedSet, &run))
            result += run;
        if (scanner.scanLocation() < self.size())
            scanner.setScanLocation(scanner.scanLocation() + 1);
    }
    return result;
}

QString cleanWithReplace(const QString &self, const QStringList &set, const QString &replacement)
{
    if (isBlankString(self))
        return self;
    const MemberTest isMember(set);
    QString result;
    result.reserve(self.size());
    for (QChar c : self) {
        if (isMember(c))
            result += replacement;
        else
            result += c;
    }
    return result;
}

QString trimFromStart(const QString &self, const QStringList &set)
{
    if (isBlankString(self))
        return self;
    const MemberTest isMember(set);
    qsizetype start = 0;
    while (start < self.size() && isMember(self[start]))
        ++start;
    return self.mid(start);
}

QString trimFromEnd(const QString &self, const QStringList &set)
{
    if (isBlankString(self))
        return self;
    const MemberTest isMember(set);
    qsizetype end = self.size();
    while (end > 0 && isMember(self[end - 1]))
        --end;
    return self.left(end);
}

QString trimFromBoth(const QString &self, const QStringList &set)
{
    if (isBlankString(self))
        return self;
    return trimFromEnd(trimFromStart(self, set), set);
}

QString deprefix(const QString &self, const QString &prefix)
{
    if (isBlankString(self))
        return self;
    // The bare prefix is tried first, so a following " " or "-" is only ever
    // removed when the prefix itself is empty. Callers rely on this order.
    static const QStringList delims = {QString(), QStringLiteral(" "), QStringLiteral("-")};
    for (const QString &delim : delims) {
        const QString combined = prefix + delim;
        if (hasPrefix(self, combined))
            return self.mid(combined.size());
    }
    return self;
}

QString desuffix(const QString &self, const QString &suffix)
{
    return hasSuffix(self, suffix) ? self.left(self.size() - suffix.size()) : self;
}

// Lower-casing can change a string's length (a dotted capital I becomes two
// code units), so the cut is clamped to the receiver.
QString deprefixCaseInsensitive(const QString &self, const QString &prefix)
{
    return hasCaseInsensitivePrefix(self, prefix) ? self.mid(std::min(prefix.size(), self.size())) : self;
}

QString desuffixCaseInsensitive(const QString &self, const QString &suffix)
{
    return hasCaseInsensitiveSuffix(self, suffix) ? self.left(std::max<qsizetype>(0, self.size() - suffix.size()))
                                                  : self;
}

} // namespace StringAdditions
