#include "StringAdditions.h"
#include "TextScanner.h"

#include <QStringDecoder>
#include <QUrl>
#include <QUuid>

namespace StringAdditions {

namespace {

// Replaces every occurrence of `search` that lies wholly inside [0, limit)
// of the text as it stands; the limit is not moved by what is put in.
void replaceWithin(QString &text, const QString &search, const QString &replacement, qsizetype limit)
{
    qsizetype from = 0;
    while (true) {
        const qsizetype at = text.indexOf(search, from);
        if (at < 0 || at + search.size() > limit)
            return;
        text.replace(at, search.size(), replacement);
        from = at + replacement.size();
    }
}

int hexDigit(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}

// A hexadecimal number at the start of `pair` as a scanner reads one: white
// space skipped, an optional "0x", then as many digits as there are.
std::optional<quint32> scanHex(QStringView pair)
{
    qsizetype at = 0;
    while (at < pair.size() && allWhitespaceCharacterSet().contains(pair[at]))
        ++at;
    const bool prefixed = at + 1 < pair.size() && pair[at] == u'0' && (pair[at + 1] == u'x' || pair[at + 1] == u'X');
    if (prefixed)
        at += 2;
    if (at >= pair.size() || hexDigit(pair[at]) < 0)
        return prefixed ? std::optional<quint32>(0) : std::nullopt; // "0x" alone reads as its 0
    quint32 value = 0;
    for (; at < pair.size() && hexDigit(pair[at]) >= 0; ++at)
        value = value * 16 + quint32(hexDigit(pair[at]));
    return value;
}

} // namespace

QString quotedForm(const QString &self)
{
    return QStringLiteral("'%1'").arg(snr(self, QStringLiteral("'"), QStringLiteral("'\\\\''")));
}

QString addQuoteEscapes(const QString &self)
{
    if (isBlankString(self))
        return self;
    return snr(snr(self, QStringLiteral("\\"), QStringLiteral("\\\\")), QStringLiteral("\""), QStringLiteral("\\\""));
}

QString removeQuoteEscapes(const QString &self)
{
    if (isBlankString(self))
        return self;
    return snr(snr(self, QStringLiteral("\\\\"), QStringLiteral("\\")), QStringLiteral("\\\""), QStringLiteral("\""));
}

QString addPercentEscapes(const QString &self)
{
    if (isBlankString(self))
        return self;
    // Unreserved characters stay by themselves; of the reserved ones, all
    // but " ;+:@&=/" stay too. Everything else is escaped, "%" included.
    return QString::fromLatin1(self.toUtf8().toPercentEncoding("?#[]!$'()*,"));
}

QString prepForURL(const QString &self)
{
    return snr(addPercentEscapes(self), QStringLiteral("%20"), QStringLiteral("+"));
}

std::optional<QString> removePercentEscapes(const QString &self)
{
    if (isBlankString(self))
        return self;
    const QByteArray utf8 = self.toUtf8();
    QByteArray bytes;
    bytes.reserve(utf8.size());
    for (qsizetype i = 0; i < utf8.size(); ++i) {
        if (utf8[i] != '%') {
            bytes.append(utf8[i]);
            continue;
        }
        const int high = i + 1 < utf8.size() ? hexDigit(QChar(utf8[i + 1])) : -1;
        const int low = i + 2 < utf8.size() ? hexDigit(QChar(utf8[i + 2])) : -1;
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes.append(char(high * 16 + low));
        i += 2;
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

QString decodeURLString(const QString &self)
{
    if (isBlankString(self))
        return self;
    QString output;
    output.reserve(25);
    const CharacterSet plusAndPercent = CharacterSet::fromCharacters(QStringLiteral("+%"));
    TextScanner scanner(self);
    while (!scanner.isAtEnd()) {
        QString scanned;
        if (scanner.scanUpToCharactersFromSet(plusAndPercent, &scanned)) {
            // White space at the very end is skipped like white space before a scan.
            if (scanner.scanLocation() == self.size())
                while (!scanned.isEmpty() && CharacterSet::whitespaceAndNewlines().contains(scanned.back()))
                    scanned.chop(1);
            output += scanned;
        }
        if (scanner.isAtEnd())
            break;
        // The location may stand before white space the scanner skipped.
        qsizetype at = scanner.scanLocation();
        while (at < self.size() && CharacterSet::whitespaceAndNewlines().contains(self[at]))
            ++at;
        const QChar c = self[at];
        if (c == u'+') {
            scanner.setScanLocation(at + 1);
            output += u' ';
        } else if (c == u'%') {
            // A digit that is not hexadecimal counts as 0; a byte of 0x80 or
            // more is no character by itself and adds nothing.
            const int high = at + 1 < self.size() ? std::max(hexDigit(self[at + 1]), 0) : 0;
            const int low = at + 2 < self.size() ? std::max(hexDigit(self[at + 2]), 0) : 0;
            scanner.setScanLocation(std::min(at + 3, self.size()));
            const int byte = high * 16 + low;
            if (byte > 0 && byte < 0x80)
                output += QChar(byte);
        } else {
            scanner.setScanLocation(at + 1); // cannot happen; never loop on it
        }
    }
    return output;
}

QString safeForXML(const QString &self)
{
    QString text = self;
    const qsizetype limit = self.size();
    const std::pair<const char *, const char *> entities[] = {
        {"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}, {"'", "&apos;"}};
    for (const auto &[character, entity] : entities)
        replaceWithin(text, QString::fromLatin1(character), QString::fromLatin1(entity), limit);
    return text;
}

QString convertToHex(const QString &self)
{
    if (isBlankString(self))
        return self;
    QString hex;
    hex.reserve(self.size() * 2);
    for (const QChar c : self)
        hex += QString::asprintf("%02X", unsigned(c.unicode()));
    return hex.toUpper();
}

QString convertFromHex(const QString &self)
{
    if (isBlankString(self))
        return self;
    QString text;
    quint32 value = 0; // a pair that is not hexadecimal repeats the one before
    for (qsizetype i = 0; i < self.size() / 2; ++i) {
        if (const auto scanned = scanHex(QStringView(self).sliced(2 * i, 2)))
            value = *scanned;
        text += QChar(char16_t(value & 0xff)); // eight bits, read as Latin-1
    }
    return text;
}

bool isValidURL(const QString &self)
{
    return !self.isEmpty() && QUrl(self, QUrl::StrictMode).isValid();
}

QString uuidString()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

} // namespace StringAdditions
