#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// Names in many scripts, for tests that hold Nomen to a trusted tool (Perl,
// ICU): Latin with accents precomposed and combining, German, Turkish,
// Greek, Cyrillic, Chinese, Japanese, Korean, emoji with modifiers and
// joiners, and plain ASCII, joined in a fixed order that looks random.
namespace NameCorpus {

inline const QStringList &letterWords()
{
    static const QStringList words = {
        QStringLiteral("Ünï"), QStringLiteral("résumé"), QStringLiteral("Crème"), QStringLiteral("brûlée"),
        QStringLiteral("e\u0301te\u0301"), QStringLiteral("Straße"), QStringLiteral("STRASSE"), QStringLiteral("İstanbul"),
        QStringLiteral("ıyı"), QStringLiteral("ǆungla"), QStringLiteral("Œuvre"), QStringLiteral("ﬁsh"),
        QStringLiteral("ΟΔΟΣ"), QStringLiteral("Ωmega"), QStringLiteral("άλφα"), QStringLiteral("Σίσυφος"),
        QStringLiteral("ΐ"), QStringLiteral("Привет"), QStringLiteral("ёлка"), QStringLiteral("ЙОД"),
        QStringLiteral("写真"), QStringLiteral("日本語"), QStringLiteral("東京タワー"), QStringLiteral("한국어"),
        QStringLiteral("𐐨𐑉"), QStringLiteral("Ärger"), QStringLiteral("ñandú"), QStringLiteral("Ελληνικά"),
    };
    return words;
}

inline const QStringList &otherPieces()
{
    static const QStringList pieces = {
        QStringLiteral("IMG_0042"), QStringLiteral("_12"), QStringLiteral("2023"), QStringLiteral("(2)"),
        QStringLiteral("📷"), QStringLiteral("👍🏽"), QStringLiteral("🇩🇪"), QStringLiteral("👨‍👩‍👧"),
        QStringLiteral("a-b"), QStringLiteral("x"), QStringLiteral("  "), QStringLiteral("7"),
    };
    return pieces;
}

// Each name from two to four pieces, with a space, an underscore, a hyphen
// or nothing between them. No ".", "/", "$", "@", "\" or '"': those mean
// something to the composer or to a Perl literal, and are tested apart.
inline QStringList utf8Names(int count)
{
    const QStringList all = letterWords() + otherPieces();
    static const QStringList joins = {QStringLiteral(" "), QStringLiteral("_"), QString(), QStringLiteral("-")};
    QStringList names;
    quint32 state = 12345;
    const auto next = [&state](quint32 below) {
        state = state * 1103515245u + 12345u;
        return (state >> 16) % below;
    };
    while (names.size() < count) {
        const quint32 pieces = 2 + next(3);
        QString name = all[next(quint32(all.size()))];
        for (quint32 i = 1; i < pieces; ++i)
            name += joins[next(quint32(joins.size()))] + all[next(quint32(all.size()))];
        if (!names.contains(name))
            names.append(name);
    }
    return names;
}

// Names holding bytes that are not UTF-8: a stray Latin-1 letter, a cut
// two-byte and four-byte sequence, an encoded surrogate, a lone
// continuation byte, beside characters of several scripts.
inline QList<QByteArray> brokenNames()
{
    const QList<QByteArray> bytes = {"\xff", "\xe9", "\xc3", "\xf0\x9f\x93", "\xed\xa0\x80", "\x80\x80"};
    const QStringList around = {QStringLiteral("café"), QStringLiteral("ΟΔΟΣ"), QStringLiteral("写真"),
                                QStringLiteral("IMG_1"), QStringLiteral("Привет 2"), QStringLiteral("📷x")};
    QList<QByteArray> names;
    for (qsizetype i = 0; i < bytes.size(); ++i)
        for (qsizetype j = 0; j < around.size(); ++j) {
            const QByteArray word = around[(i + j) % around.size()].toUtf8();
            names.append(j % 2 ? word + bytes[i] : bytes[i] + word + " " + around[j].toUtf8());
        }
    return names;
}

} // namespace NameCorpus
